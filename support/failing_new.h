// Makes allocations of the calling thread fail, in a program that is linked
// with failing_new.cc.
#pragma once

#include <cstddef>

namespace support {

/// From now on the `count`-th allocation of this thread of at least `size` bytes
/// throws std::bad_alloc; the ones before and after it succeed.
void FailAllocation(std::size_t count, std::size_t size);

/// Which allocations of the calling thread are watched, and which of them fail.
struct Watch {
  std::size_t fail = 0;       // the number of the one that fails, from 1; 0: none
  std::size_t size = 0;       // only those of at least so many bytes are watched
  bool from_then_on = false;  // the ones after it fail, too
  bool own_only = false;      // only those of the object networkgrpc_watched are watched
  void (*fails)() = nullptr;  // throws in place of std::bad_alloc, if given
};
void WatchAllocations(const Watch& watch);

/// Stops watching, and returns how many allocations were watched.
std::size_t AllocationsSeen();

/// How many of the watched allocations are not freed yet; at most 4,096 are tracked.
std::size_t AllocationsAlive();

}  // namespace support
