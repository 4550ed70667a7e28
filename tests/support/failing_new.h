// Makes allocations of the calling thread fail, in a program that is linked
// with failing_new.cc.
#pragma once

#include <cstddef>

namespace support {

/// From now on the `count`-th allocation of this thread of at least `size` bytes
/// throws std::bad_alloc; the ones before and after it succeed.
void FailAllocation(std::size_t count, std::size_t size);

/// Ends that, and tells how many allocations of that size there were.
std::size_t AllocationsSeen();

}  // namespace support
