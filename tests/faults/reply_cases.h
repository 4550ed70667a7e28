// One function, the replies that it gets, and what must come of it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/functions.h"
#include "support/outcome.h"

namespace faults {

struct ReplyCase {
  std::string name;
  std::vector<std::pair<support::Request, support::Answer>> answers;
  support::Outcome expected;
  int protobuf_lines = 0;  // that protobuf prints about the replies
};

/// Call `k` gets this answer, which makes it fail; every other call succeeds.
ReplyCase CallFails(const support::Function& function, std::size_t k, support::Answer answer);

/// Call `k` gets this reply, which changes nothing.
ReplyCase CallSucceeds(const support::Function& function, std::size_t k, std::string reply);

// Replies that are well formed but unusual. The result is defined per function.

/// Each call in turn gets `reply`, in which every field has its zero value.
std::vector<ReplyCase> EmptyReplies(const support::Function& function,
                                    const std::string& reply = "");
/// Enum numbers that the schema does not list.
std::vector<ReplyCase> UnlistedEnumNumbers(const support::Function& function);
/// Lists with 10,000 more entries after the usual ones.
std::vector<ReplyCase> LongLists(const support::Function& function);

}  // namespace faults
