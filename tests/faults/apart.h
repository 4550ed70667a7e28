// Many cases at once, each in a process of its own: a fault of the connection
// needs clients that no other case has used.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/tally.h"

namespace faults {

struct Job {
  std::string name;
  std::function<void(Tally&)> work;
};

/// Runs all jobs at the same time and adds up what they counted. This process
/// must not have used gRPC yet. A job that has not ended shortly before the test must
/// is ended and counts as a case that failed.
Tally RunApart(const std::vector<Job>& jobs);

}  // namespace faults
