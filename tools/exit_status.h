// How networkgrpc ends. Part of its contract: scripts test these numbers.
#pragma once

namespace tool {

enum class ExitStatus {
  kDone = 0,
  kFailed = 1,
  kUsage = 2,
  kTimeLimit = 3,
  kRefused = 4,      // the daemon answers, but did not do this
  kUnreachable = 8,  // the daemon cannot be reached
  kNotFound = 10,
};

/// The name of the status in a JSON error object.
constexpr const char* Name(ExitStatus status) {
  switch (status) {
    case ExitStatus::kDone:
      return "done";
    case ExitStatus::kUsage:
      return "usage";
    case ExitStatus::kTimeLimit:
      return "time-limit";
    case ExitStatus::kRefused:
      return "refused";
    case ExitStatus::kUnreachable:
      return "unreachable";
    case ExitStatus::kNotFound:
      return "not-found";
    case ExitStatus::kFailed:
      break;
  }
  return "failed";
}

}  // namespace tool
