#include "support/failing_new.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace support {
namespace {

struct Plan {
  Watch watch;
  std::size_t seen = 0;
  bool armed = false;
  std::array<void*, 4096> alive{};
  std::size_t alive_count = 0;
};
thread_local Plan plan;

bool IsWatched(std::size_t size, bool own) {
  return plan.armed && size >= plan.watch.size && (own || !plan.watch.own_only);
}

bool MustFail() {
  if (plan.watch.fail == 0) return false;
  return plan.watch.from_then_on ? plan.seen >= plan.watch.fail : plan.seen == plan.watch.fail;
}

void* Allocate(std::size_t size, bool own) {
  const bool watched = IsWatched(size, own);
  if (watched) {
    ++plan.seen;
    if (MustFail()) {
      if (plan.watch.fails != nullptr) plan.watch.fails();
      throw std::bad_alloc();
    }
  }
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  if (watched && plan.alive_count < plan.alive.size()) plan.alive[plan.alive_count++] = memory;
  return memory;
}

void Free(void* memory) noexcept {
  if (plan.alive_count != 0) {
    auto* const end = plan.alive.data() + plan.alive_count;
    if (auto* const found = std::find(plan.alive.data(), end, memory); found != end)
      *found = plan.alive[--plan.alive_count];
  }
  std::free(memory);
}

}  // namespace

void FailAllocation(std::size_t count, std::size_t size) { WatchAllocations({count, size}); }

void WatchAllocations(const Watch& watch) {
  plan.watch = watch;
  plan.seen = 0;
  plan.alive_count = 0;
  plan.armed = true;
}

std::size_t AllocationsSeen() {
  plan.armed = false;
  return plan.seen;
}

std::size_t AllocationsAlive() { return plan.alive_count; }

}  // namespace support

// The program's own operators: the library, and what it is linked with, use them.
void* operator new(std::size_t size) { return support::Allocate(size, false); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return support::Allocate(size, false);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept { support::Free(memory); }
void operator delete(void* memory, std::size_t) noexcept { support::Free(memory); }

// The linker uses these for operator new in networkgrpc_watched (--wrap).
extern "C" {
void* NewOfOwnCode64(std::size_t size) __asm__("__wrap__Znwm");
void* NewOfOwnCode64(std::size_t size) { return support::Allocate(size, true); }
void* NewOfOwnCode32(std::size_t size) __asm__("__wrap__Znwj");
void* NewOfOwnCode32(std::size_t size) { return support::Allocate(size, true); }
}
