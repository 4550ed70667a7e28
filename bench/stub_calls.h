// What a program without the library would do: the same calls through the generated
// blocking stubs, on channels made as the library makes its own.
#pragma once

#include "bench/pairs.h"
#include "support/functions.h"

namespace bench {

/// The calls that a function makes, one after the other, with requests made before.
/// Replies are read and dropped. Empty for a function that makes none.
Attempt StubCalls(const support::Function& function);

}  // namespace bench
