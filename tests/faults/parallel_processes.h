// Runs many cases at the same time, each in its own process: a fault of the connection
// needs clients that no other case has used.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/functions.h"
#include "tests/faults/result_counts.h"

namespace faults {

struct Job {
  std::string name;
  std::function<void(ResultCounts&)> work;
};

/// Runs all jobs at the same time and returns the sum of their counts. This process must
/// not have used gRPC before. A job that crashes, or has not ended 10 s before the test's
/// time limit (it is then killed), counts as one failed case.
ResultCounts RunInParallelProcesses(const std::vector<Job>& jobs);

/// The same with one job for every function of the library.
ResultCounts RunForEveryFunction(
    const std::function<void(const support::Function&, ResultCounts&)>& work);

}  // namespace faults
