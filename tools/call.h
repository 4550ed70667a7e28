// From what a facade function gives, true or false, to what a user wants to
// know: done, refused, or out of reach.
#pragma once

#include <grpcpp/support/status.h>

#include <string>
#include <utility>

#include "tools/daemon.h"
#include "tools/deadline.h"
#include "tools/failure.h"

namespace tool {

/// True when a call with this status had no answer: any other status, also an
/// error, is one, but for a daemon without an endpoint, where no call is made.
bool IsOutOfReach(Daemon daemon, const grpc::Status& status);

/// Tells why `action` ("set the host name") failed, by one cheap call through
/// the daemon's client class: a daemon that answers it has refused.
Failure Explain(Daemon daemon, const std::string& action);

/// Calls a facade function of `daemon`, and throws when it gives false.
template <class Function>
void Do(Daemon daemon, const std::string& action, Function&& function) {
  deadline::Asking(daemon);
  if (!std::forward<Function>(function)()) throw Explain(daemon, action);
}

/// The same for a function that hands out one value.
template <class Value, class Function>
Value Get(Daemon daemon, const std::string& action, Function&& function) {
  Value value{};
  Do(daemon, action, [&] { return function(value); });
  return value;
}

}  // namespace tool
