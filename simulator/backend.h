// What answers the calls of a device instead of the model: a recording, or daemons
// behind this process.
#pragma once

#include <grpcpp/support/status.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "simulator/fault.h"

namespace simulator {

/// Whether a call is cancelled, and what then ends it. Outlives the call.
///
/// Threads: every function may be called from several threads at once.
class Cancellation {
 public:
  /// Runs `wanted` when the call is cancelled, at once if it is.
  void Set(std::function<void()> wanted) {
    const std::lock_guard<std::mutex> lock(mutex);
    how = std::move(wanted);
    if (is_cancelled) how();
  }
  void Cancel() {
    const std::lock_guard<std::mutex> lock(mutex);
    is_cancelled = true;
    if (how) how();
  }

 private:
  std::mutex mutex;
  std::function<void()> how;
  bool is_cancelled = false;
};

/// A call as it came.
struct Query {
  Daemon daemon = Daemon::kDapi;
  std::string path;  // "/ostrevan.grpcdapi.DAPI/GetName"
  std::string name;  // "DAPI.GetName"; the path if the schemas have no such method
  std::string request;
  std::chrono::system_clock::time_point received;
  std::chrono::system_clock::time_point deadline;  // of the client
  std::shared_ptr<Cancellation> cancellation = std::make_shared<Cancellation>();
};

/// What its client gets.
struct Outcome {
  grpc::Status status;
  std::string reply;        // if the status is OK
  bool is_dropped = false;  // the connection is closed instead
};

/// Threads: every function is called from several threads at once.
class Backend {
 public:
  using Done = std::function<void(const Outcome& outcome)>;

  Backend() = default;
  virtual ~Backend() = default;
  Backend(const Backend&) = delete;
  Backend& operator=(const Backend&) = delete;

  /// Calls `done` once, now or later; soon if the call is cancelled.
  virtual void Answer(const Query& query, const Done& done) = 0;

  /// A call has ended, also one that a fault has answered.
  virtual void Ended(const Query& query, const std::string& fault, const Outcome& outcome) = 0;
};

}  // namespace simulator
