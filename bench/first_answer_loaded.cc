// first_answer_loaded LIBRARY: the first answer through the library, loaded by name. With
// RTLD_LAZY, as the loader treats gRPC's libraries in a program that is linked with them:
// RTLD_NOW would bind all their functions, most of which nobody calls.
#include <dlfcn.h>

#include <string>

#include "bench/private_memory.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  void* const library = dlopen(argv[1], RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) return 2;
  void* const symbol =
      dlsym(library, "_ZN9DantegRPC7GetNameERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
  if (symbol == nullptr) return 2;
  bool (*get_name)(std::string&) = nullptr;
  std::memcpy(&get_name, &symbol, sizeof get_name);
  std::string name;
  const bool answered = get_name(name);
  return bench::ReportFirstAnswer(answered && !name.empty());
}
