// Why a command failed, and the exit status that reports it.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "tools/daemon.h"
#include "tools/json.h"

namespace tool {

/// Scripts test these numbers: they do not change.
enum class ExitStatus {
  kDone = 0,
  kFailed = 1,
  kUsage = 2,
  kTimeLimit = 3,
  kRejected = 4,     // the daemon answers, but rejected the request or failed
  kUnreachable = 8,  // the daemon cannot be reached
  kNotFound = 10,
};

/// The name in a JSON error object.
constexpr const char* Name(ExitStatus status) {
  switch (status) {
    case ExitStatus::kDone:
      return "done";
    case ExitStatus::kUsage:
      return "usage";
    case ExitStatus::kTimeLimit:
      return "time-limit";
    case ExitStatus::kRejected:
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

struct Failure : std::runtime_error {
  Failure(ExitStatus why, const std::string& message, Daemon whose = Daemon::kNone)
      : std::runtime_error(message), status(why), daemon(whose) {}

  /// The same failure of a command that nevertheless has a result.
  Failure With(Json what) const {
    Failure copy = *this;
    copy.result = std::move(what);
    return copy;
  }

  ExitStatus status;
  Daemon daemon;
  Json result;  // null: none
};

}  // namespace tool
