// Stands before the library's own destructors of the two clients and tells, on
// standard output, when they run. The names are those that the library exports.
#include <dlfcn.h>
#include <unistd.h>

#include <string>

namespace {

void TellAndDestroy(const char* line, const char* symbol, void* client) {
  const std::string text = line;
  if (write(STDOUT_FILENO, text.data(), text.size()) < 0) _exit(3);
  using Destructor = void (*)(void*);
  const auto destroy = reinterpret_cast<Destructor>(dlsym(RTLD_NEXT, symbol));
  if (destroy == nullptr) _exit(4);
  destroy(client);
}

}  // namespace

extern "C" {

void DestroyNetworkManagerClient(void* client) __asm__("_ZN20NetworkManagerClientD1Ev");
void DestroyNetworkManagerClient(void* client) {
  TellAndDestroy("network-manager client destroyed\n", "_ZN20NetworkManagerClientD1Ev", client);
}

void DestroyDapiClient(void* client) __asm__("_ZN10DAPIClientD1Ev");
void DestroyDapiClient(void* client) {
  TellAndDestroy("Dante client destroyed\n", "_ZN10DAPIClientD1Ev", client);
}

}  // extern "C"
