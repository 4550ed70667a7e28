// What a program without the library would do: the same calls through the generated
// blocking stubs, on channels made as the library makes its own.
#pragma once

#include "bench/pairs.h"
#include "tests/support/functions.h"

namespace bench {

/// The calls that a function makes, one after the other, with requests made before.
/// Replies are read and dropped; the line that setampname prints is printed. Empty for
/// a function that makes none.
Attempt StubCalls(const support::Function& function);

/// GetAllIPv4 as a program would write it that counts on the daemon's order: the same
/// calls, and what they give copied into records of its own.
Attempt AllInterfacesByHand();

}  // namespace bench
