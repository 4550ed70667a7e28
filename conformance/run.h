// Runs the checks, and restores what they change.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "conformance/check.h"

namespace conformance {

enum class Outcome { kPassed, kFailed, kSkipped };

struct Result {
  const Check* check = nullptr;
  Outcome outcome = Outcome::kPassed;
  std::string why;  // the problem, or the reason to skip it
  double seconds = 0;
  std::vector<Exchange> exchanges;
};

struct Permissions {
  bool read_only = false;
  bool factory_reset = false;
};

struct Run {
  std::vector<Result> results;
  std::string not_restored;  // why; "" if what was before was restored after each check
  bool is_interrupted = false;

  std::size_t Count(Outcome outcome) const;
};

/// `step` is called before each check.
Run RunChecks(const Checks& checks, Session& session, const Permissions& permissions,
              const std::function<void()>& step);

}  // namespace conformance
