// How a step of the demonstration fails.
#pragma once

#include <stdexcept>
#include <string>

namespace demo {

class StepFailed : public std::runtime_error {
 public:
  StepFailed(const std::string& step, const std::string& expected, const std::string& seen)
      : std::runtime_error(step + ": expected " + expected + ", saw " + seen) {}
};

/// For a call of the library: `step` says what it was to do. Why it was not done
/// the library has told on standard error, with the exception of a few readers.
inline void Require(bool done, const std::string& step) {
  if (!done) throw StepFailed(step, "the daemon to do it", "a refusal, or no answer");
}

}  // namespace demo
