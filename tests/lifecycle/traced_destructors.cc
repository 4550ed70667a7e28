// Prints a line to standard output when the destructor of one of the two clients runs: it
// replaces __cxa_atexit, with which destructors of static objects are registered. The
// clients are found by the names of their instances, which the library exports.
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

// Initialised statically: __cxa_atexit is called before any constructor of this program.
std::array<Client, 2> clients{
    {{"_ZZN20NetworkManagerClient11GetInstanceEvE8instance", "network-manager client destroyed\n",
      nullptr},
     {"_ZZN10DAPIClient11GetInstanceEvE8instance", "Dante client destroyed\n", nullptr}}};

void PrintAndDestroy(void* object) {
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
    destroy = PrintAndDestroy;
  }
  return original(destroy, object, library);
}

}  // extern "C"
