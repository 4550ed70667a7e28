// One function of the library and a daemon that serves it, in this process for
// the first time.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "tests/faults/child_daemon.h"
#include "tests/faults/tally.h"
#include "tests/support/functions.h"
#include "tests/support/outcome.h"

namespace faults {

/// Lets time pass: the length of an outage, or the pace of calls. Never a
/// substitute for an event that could be waited for.
void LetPass(std::chrono::milliseconds time);

/// What comes out when all is well.
support::Outcome Healthy(const support::Function& function);

class Bench {
 public:
  enum class Start {
    kConnected,      // the daemon runs, and one good call was made
    kWithoutDaemon,  // no daemon, no client
  };

  explicit Bench(const support::Function& tested, Start start = Start::kConnected);

  /// Starts the daemon, which answers every call of the function well. Once.
  void StartDaemon();

  /// Calls again and again until the function works: gRPC tells nobody when it
  /// is connected again. Counts one case, as expected when nothing came out
  /// meanwhile but what the failing of some of its calls explains.
  void WaitUntilHealthy(Tally& tally);

  /// Whether the failing of any of its calls, or of none, explains what came out.
  bool Explains(const support::Outcome& seen) const;

  const support::Function& function;
  ReservedPort port;
  std::unique_ptr<ChildDaemon> daemon;

 private:
  void Connect();

  // Its process is there before gRPC has threads in this one: QEMU, emulating another
  // processor, now and then hangs in a lock of its own when a process with threads
  // starts another.
  std::unique_ptr<ChildDaemon> next;
};

}  // namespace faults
