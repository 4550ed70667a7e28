// What comes of one call of a function, and what must come of it.
#pragma once

#include <cstddef>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/support/functions.h"

namespace support {

struct Outcome {
  bool done = false;
  std::string outputs = {};
  std::string printed = {};
  std::vector<Request> requests = {};
};
bool operator==(const Outcome& a, const Outcome& b);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

/// Calls the function and collects what it prints. The requests are the
/// daemon's to tell: they are left empty.
Outcome Call(const Function& function);

/// What must come of a function when these of its steps fail.
Outcome Expected(const Function& function, const std::set<std::size_t>& failing);

/// ... when every step fails because no daemon can be reached.
Outcome ExpectedWithoutDaemon(const Function& function);

/// ... and when that is so since the first use, so that no role is known.
Outcome ExpectedWithoutRoles(const Function& function);

}  // namespace support
