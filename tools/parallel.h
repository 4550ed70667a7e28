// Several calls at a time.
#pragma once

#include <cstddef>
#include <functional>

namespace tool {

/// Calls function(0) to function(count - 1), several at a time, and returns when all have
/// ended. After a failure none is begun; the failure of the lowest number is thrown.
void Parallel(std::size_t count, const std::function<void(std::size_t)>& function);

}  // namespace tool
