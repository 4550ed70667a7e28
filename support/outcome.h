// The outcome of one call of a function, and the outcome that is expected.
#pragma once

#include <cstddef>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "support/functions.h"

namespace support {

struct Outcome {
  bool done = false;
  std::string outputs = {};
  std::string printed = {};
  std::vector<Request> requests = {};
};
bool operator==(const Outcome& a, const Outcome& b);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

/// Calls the function and collects what it prints. The requests, which only the daemon
/// knows, are left empty.
Outcome Call(const Function& function);

/// What is expected of a function when these of its steps fail.
Outcome Expected(const Function& function, const std::set<std::size_t>& failing);

/// What is expected when every step fails because no daemon can be reached.
Outcome ExpectedWithoutDaemon(const Function& function);

/// The same when no daemon could be reached at the first use either: no role is resolved.
Outcome ExpectedWithoutRoles(const Function& function);

}  // namespace support
