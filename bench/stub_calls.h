// What a program without the library would do: the same calls through the generated
// blocking stubs, on channels made as the library makes its own.
#pragma once

#include "bench/pairs.h"
#include "support/functions.h"

namespace bench {

/// The calls that a function makes, one after the other, with requests prepared in advance.
/// Replies are parsed and discarded; the line that setampname prints is printed. Empty for
/// a function that makes no call.
Attempt StubCalls(const support::Function& function);

/// GetAllIPv4 as written by a program that relies on the daemon's order: the same calls,
/// and the replies copied into its own records.
Attempt AllInterfacesByHand();

}  // namespace bench
