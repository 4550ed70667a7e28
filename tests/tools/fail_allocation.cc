// Preloaded, makes one allocation of C++ code fail, that with the number in FAILING_ALLOCATION.
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

const long failing = std::atol(std::getenv("FAILING_ALLOCATION"));
std::atomic<long> count{0};

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = ++count == failing ? nullptr : std::malloc(size > 0 ? size : 1);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
