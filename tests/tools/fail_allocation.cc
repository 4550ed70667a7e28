// Preloaded, makes one allocation of C++ code fail, that with the number in FAILING_ALLOCATION,
// and creates the file "failed" when it does.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> count{0};

}  // namespace

void* operator new(std::size_t size) {
  // Some allocate before this is initialized.
  static const long failing = std::atol(std::getenv("FAILING_ALLOCATION"));
  if (++count == failing) {
    close(creat("failed", S_IRUSR | S_IWUSR));
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size > 0 ? size : 1);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
