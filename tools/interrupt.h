// SIGINT, SIGTERM and SIGHUP. They end the process, as in any program, unless a change
// is being made: then they cancel the call, so that the command can report what it has
// done and what is not known.
#pragma once

#include <grpcpp/client_context.h>

#include <functional>

namespace tool::interrupt {

/// Call once, in the main thread, before other threads start. Child processes inherit
/// that the signals are blocked.
void Watch();

/// While a Handler lives, a signal calls its function, in a thread of its own, and
/// cancels the calls in progress instead of ending the process. They nest.
class Handler {
 public:
  explicit Handler(std::function<void()> function = [] {});
  ~Handler();

  Handler(const Handler&) = delete;
  Handler& operator=(const Handler&) = delete;

 private:
  std::function<void()> outer;
};

/// A function that is called before a signal ends the process; none: an empty one.
void BeforeEnd(std::function<void()> function);

/// The same as SIGTERM, for a command that has all it was started for.
void Request();

/// The signal for which a Handler was called; 0 if none was.
int Signal();

/// A call in progress, which a signal cancels.
class Call {
 public:
  explicit Call(grpc::ClientContext& context);
  ~Call();

  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  grpc::ClientContext* call;
};

}  // namespace tool::interrupt
