// Why a command did not do what it was asked for.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "tools/daemon.h"
#include "tools/exit_status.h"
#include "tools/json.h"

namespace tool {

struct Failure : std::runtime_error {
  Failure(ExitStatus why, const std::string& message, Daemon whose = Daemon::kNone)
      : std::runtime_error(message), status(why), daemon(whose) {}

  /// The same failure of a command that nevertheless has something to tell.
  Failure With(Json what) const {
    Failure copy = *this;
    copy.result = std::move(what);
    return copy;
  }

  ExitStatus status;
  Daemon daemon;
  Json result;  // null: nothing to tell
};

}  // namespace tool
