// Why a command failed, and the exit status that reports it.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "tools/daemon.h"
#include "tools/json.h"

namespace tool {

/// Scripts test these numbers: they do not change.
enum class ExitStatus {
  kDone = 0,
  kFailed = 1,  // also: not confirmed, the value read back differs
  kUsage = 2,
  kTimeLimit = 3,    // nothing was changed
  kRejected = 4,     // the daemon answered that it does not do it
  kErrorStatus = 5,  // the daemon answered with an error status
  kUnknown = 6,      // connection or time limit ended during a change
  kUnreachable = 8,
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
      return "rejected";
    case ExitStatus::kErrorStatus:
      return "error-status";
    case ExitStatus::kUnknown:
      return "unknown";
    case ExitStatus::kUnreachable:
      return "unreachable";
    case ExitStatus::kNotFound:
      return "not-found";
    case ExitStatus::kFailed:
      break;
  }
  return "failed";
}

/// What has become of the change that a command was to make.
enum class Outcome { kNotDone, kUnknown, kPartly };

constexpr const char* Name(Outcome outcome) {
  return outcome == Outcome::kNotDone  ? "not-done"
         : outcome == Outcome::kPartly ? "partly"
                                       : "unknown";
}

struct Failure : std::exception {
  Failure(ExitStatus why, std::string in_words, Daemon whose = Daemon::kNone)
      : status(why), message(std::move(in_words)), daemon(whose) {}

  const char* what() const noexcept override { return message.c_str(); }

  /// The same failure of a command that nevertheless has a result.
  Failure With(Json what) const {
    Failure copy = *this;
    copy.result = std::move(what);
    return copy;
  }

  ExitStatus status;
  std::string message;
  Daemon daemon;
  // Of the call that failed, if one did: its RPC, the name of its gRPC status, and the
  // message that the daemon sent with it.
  std::string rpc;
  std::string grpc_status;
  std::string daemon_message;
  Outcome outcome = Outcome::kNotDone;
  Json result;  // null: none
};

}  // namespace tool
