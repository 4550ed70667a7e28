// Preloaded, makes one allocation of C++ code fail, and creates the file "failed" when it does:
// the first at the place with the number in FAILING_PLACE. A place is where the code
// allocates and where that is called; they are numbered as the program comes to them.
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <mutex>
#include <new>
#include <set>

namespace {

using Place = std::array<void*, 2>;

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
  const std::lock_guard<std::mutex> lock(mutex);
  const bool is_new = places.insert(place).second;
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
