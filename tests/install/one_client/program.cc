// A program, a shared object that it is linked with and a module that it loads, each
// with symbols of its own hidden: prints which of them have the library's own clients.
#include <dlfcn.h>

#include <cstdio>

#include "clients.h"

int main(int, char** arguments) {
  void* const library = dlopen("libNetworkgRPC.so.1", RTLD_NOW | RTLD_NOLOAD);
  void* const module = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr || module == nullptr) return 1;
  const auto loaded = reinterpret_cast<Clients (*)()>(dlsym(module, "ClientsOfLoaded"));
  const Clients own = {dlsym(library, "_ZZN10DAPIClient11GetInstanceEvE8instance"),
                       dlsym(library, "_ZZN20NetworkManagerClient11GetInstanceEvE8instance")};
  const bool exported = own.dapi != nullptr && own.network_manager != nullptr;
  std::printf("exported: %s\n", exported ? "yes" : "no");
  std::printf("program: %s\n", ClientsOfProgram() == own ? "same" : "another");
  std::printf("linked: %s\n", ClientsOfLinked() == own ? "same" : "another");
  std::printf("loaded: %s\n", loaded() == own ? "same" : "another");
}
