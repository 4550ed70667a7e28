// Stands before the C runtime's list of what runs at exit and tells, on standard
// output, when the destructor of one of the two clients does. The clients are known by
// the names of their instances, which the library exports.
#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace {

using Destructor = void (*)(void*);

struct Client {
  const char* instance;
  const char* line;
  Destructor destroy;
};

// Initialised before anything runs, as everything comes by here.
std::array<Client, 2> clients{
    {{"_ZZN20NetworkManagerClient11GetInstanceEvE8instance", "network-manager client destroyed\n",
      nullptr},
     {"_ZZN10DAPIClient11GetInstanceEvE8instance", "Dante client destroyed\n", nullptr}}};

void TellAndDestroy(void* object) {
  for (const Client& client : clients) {
    if (dlsym(RTLD_DEFAULT, client.instance) != object) continue;
    if (write(STDOUT_FILENO, client.line, std::strlen(client.line)) < 0) _exit(3);
    client.destroy(object);
  }
}

}  // namespace

extern "C" {

int AtExit(Destructor destroy, void* object, void* library) __asm__("__cxa_atexit");
int AtExit(Destructor destroy, void* object, void* library) {
  using Original = int (*)(Destructor, void*, void*);
  const auto original = reinterpret_cast<Original>(dlsym(RTLD_NEXT, "__cxa_atexit"));
  for (Client& client : clients) {
    if (object == nullptr || dlsym(RTLD_DEFAULT, client.instance) != object) continue;
    client.destroy = destroy;
    destroy = TellAndDestroy;
  }
  return original(destroy, object, library);
}

}  // extern "C"
