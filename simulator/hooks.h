// What others do when a device receives calls.
//
// Threads: the functions are called from several threads at once, and must not wait.
#pragma once

#include <functional>
#include <string>

namespace simulator {

struct Hooks {
  /// Lets a call go on: true to answer it, false to drop its connection. Can be called
  /// once, from any thread, also after the call or the device has ended.
  using Resume = std::function<void(bool is_answered)>;

  /// Called with the full name of the method, before faults are applied. Returns true
  /// to hold the call until `resume` is called.
  std::function<bool(const std::string& method, const Resume& resume)> hold = {};
  /// A call was recorded (call_log.h).
  std::function<void()> recorded = {};
};

}  // namespace simulator
