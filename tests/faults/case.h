// One function, the answers that it gets, and what must come of it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/functions.h"
#include "tests/support/outcome.h"

namespace faults {

struct Case {
  std::string what;
  std::vector<std::pair<support::Request, support::Answer>> answers;
  support::Outcome expected;
  int protobuf_lines = 0;  // what protobuf itself prints about the answers
};

/// Every call is answered well but this one; the calls before it, and those that
/// the function makes all the same, are as usual.
Case CallFails(const support::Function& function, std::size_t k, support::Answer answer);

/// The same with an answer that changes nothing.
Case CallSucceeds(const support::Function& function, std::size_t k, std::string reply);

// Replies that are well formed but unusual. What each function makes of them is
// written down function by function.

/// No bytes at all, for each call in turn: every field has its zero value.
std::vector<Case> EmptyReplies(const support::Function& function, const std::string& reply = "");
/// Enum numbers that the schema does not list.
std::vector<Case> UnlistedNumbers(const support::Function& function);
/// 10,000 more entries in every list, behind the usual ones.
std::vector<Case> Crowds(const support::Function& function);

}  // namespace faults
