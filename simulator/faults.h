// The faults of one device and the calls that it has received: all that the
// daemons ask before they answer.
//
// Threads: every function may be called from several threads at once.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "simulator/fault.h"

namespace simulator {

/// One call that has arrived.
struct ReceivedCall {
  std::uint64_t number = 0;  // 1 for the first that the device received
  std::string method;        // "DAPI.GetName"
  std::string request;       // as JSON in one line; "null" when it cannot be parsed
  std::string fault;         // the text form of the fault that it met, else empty
};

class Faults {
 public:
  /// Behind those that are there: of several for one method the first acts, until
  /// its times are used up. The fault must have passed Check.
  void Add(const Fault& fault);
  /// Takes back those told for exactly this method or pattern; all for "".
  void Clear(const std::string& method);
  std::vector<Fault> List() const;

  /// Whether a daemon is to be stopped, which no call can tell.
  bool HasStop(Daemon daemon) const;
  void ClearStop(Daemon daemon);

  /// The fault that this call meets, whose times it uses up.
  std::optional<Fault> Take(Daemon daemon, const std::string& method);

  void Record(ReceivedCall call);
  /// The latest calls, oldest first; 10,000 at most.
  std::vector<ReceivedCall> Calls() const;
  void ForgetCalls();
  /// Waits until so many calls of the method, as Fault::method spells it, are
  /// among the recorded ones. False when the limit is over before.
  bool WaitForCalls(const std::string& method, std::size_t count, std::chrono::milliseconds limit);

 private:
  mutable std::mutex mutex;
  std::condition_variable recorded;
  std::vector<Fault> faults;
  std::deque<ReceivedCall> calls;
  std::uint64_t received = 0;
};

}  // namespace simulator
