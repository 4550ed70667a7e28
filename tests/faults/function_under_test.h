// One function of the library and the daemon that answers it, in a process that has not
// used the library before.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "support/functions.h"
#include "support/outcome.h"
#include "tests/faults/child_daemon.h"
#include "tests/faults/result_counts.h"

namespace faults {

/// Waits for the length of an outage or between two calls. Never in place of an event
/// that could be waited for.
void Pause(std::chrono::milliseconds time);

/// The outcome if every call to the daemon succeeds.
support::Outcome GoodOutcome(const support::Function& function);

/// Whether `seen` is the outcome if some of its calls, or none, fail.
bool IsPossible(const support::Function& function, const support::Outcome& seen);

/// Calls the function until it succeeds: gRPC does not report when it is connected
/// again. Counts one case, as expected if every outcome until then was possible.
void WaitUntilItWorks(const support::Function& function, ResultCounts& counts);

class FunctionUnderTest {
 public:
  enum class Start {
    kConnected,      // the daemon runs and one call has succeeded
    kWithoutDaemon,  // no daemon, no client
  };

  explicit FunctionUnderTest(const support::Function& tested, Start start = Start::kConnected);

  /// Starts the daemon, which answers every call of the function. At most once.
  void StartDaemon();

  const support::Function& function;
  support::ReservedPort port;
  std::unique_ptr<ChildDaemon> daemon;

 private:
  void Connect();

  // Its process is started before gRPC has threads in this one: QEMU, when it emulates
  // another processor, sometimes hangs if a process with threads starts another.
  std::unique_ptr<ChildDaemon> next;
};

}  // namespace faults
