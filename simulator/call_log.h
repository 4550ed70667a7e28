// The calls that one device has received.
//
// Threads: every function may be called from several threads at once.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace simulator {

/// One received call.
struct ReceivedCall {
  std::uint64_t number = 0;  // 1 for the first call that the device received
  std::string method;        // "DAPI.GetName"
  std::string request;       // as JSON in one line; "null" if it cannot be parsed
  std::string fault;         // the string form of its fault, empty if none
};

class CallLog {
 public:
  /// Numbers the call and records it.
  void Record(ReceivedCall call);
  /// The latest calls, oldest first: at most 10,000, and at most 16 MiB of them,
  /// but always the latest.
  std::vector<ReceivedCall> Calls() const;
  /// Removes all calls; numbers go on.
  void Clear();
  /// The recorded calls of the method, in the form of Fault::method.
  std::size_t Count(const std::string& method) const;
  /// Waits until at least `count` of them are recorded. False if the limit is reached
  /// first.
  bool WaitFor(const std::string& method, std::size_t count, std::chrono::milliseconds limit);

 private:
  std::size_t CountLocked(const std::string& method) const;

  mutable std::mutex mutex;
  std::condition_variable recorded;
  std::deque<ReceivedCall> calls;
  std::size_t bytes = 0;  // of `calls`
  std::uint64_t received = 0;
};

}  // namespace simulator
