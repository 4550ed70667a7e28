#include "support/failing_new.h"

#include <cstdlib>
#include <new>

namespace support {
namespace {

struct Plan {
  std::size_t fail = 0;
  std::size_t size = 0;
  std::size_t seen = 0;
  bool armed = false;
};
thread_local Plan plan;

void* Allocate(std::size_t size) {
  if (plan.armed && size >= plan.size && ++plan.seen == plan.fail) throw std::bad_alloc();
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void FailAllocation(std::size_t count, std::size_t size) { plan = {count, size, 0, true}; }

std::size_t AllocationsSeen() {
  plan.armed = false;
  return plan.seen;
}

}  // namespace support

// The program's own operators: the library, and what it is linked with, use them.
void* operator new(std::size_t size) { return support::Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
