// Preloaded, makes one allocation of C++ code fail, and creates the file "failed" when it does:
// the first at the place with the number in FAILING_PLACE. A place is where the code
// allocates and where that is called; they are numbered as the program comes to them. With
// ONLY_OWN_PLACES, those in libraries are left out, unless the program itself calls there.
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <set>

namespace {

using Place = std::array<void*, 2>;

// Whether the code is the program's, not that of a library.
bool IsOwn(const void* code) {
  Dl_info info{};
  return dladdr(code, &info) != 0 && std::strcmp(info.dli_fname, program_invocation_name) == 0;
}

// Whether this is the first allocation at the place that is to fail.
bool IsToFail(const Place& place) {
  thread_local bool is_counting = false;
  if (is_counting) return false;  // the set's own
  is_counting = true;
  // Not destroyed: some allocate until the end. Not global: some do before those are made.
  static auto& mutex = *new std::mutex;
  static auto& places = *new std::set<Place>;
  static const char* const wanted = std::getenv("FAILING_PLACE");
  static const std::size_t failing = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 0;
  static const bool all = std::getenv("ONLY_OWN_PLACES") == nullptr;
  const std::lock_guard<std::mutex> lock(mutex);
  const bool counts = all || IsOwn(place[0]) || IsOwn(place[1]);
  const bool is_new = counts && places.insert(place).second;
  is_counting = false;
  return is_new && places.size() == failing;
}

}  // namespace

void* operator new(std::size_t size) {
  std::array<void*, 3> callers{};  // behind this function
  backtrace(callers.data(), callers.size());
  if (IsToFail({callers[1], callers[2]})) {
    close(creat("failed", S_IRUSR | S_IWUSR));
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size > 0 ? size : 1);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
