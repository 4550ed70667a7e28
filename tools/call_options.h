// What the command line says of the calls.
#pragma once

#include <functional>

namespace tool {

/// Set from the command line before the first call.
struct CallOptions {
  double timeout = 30;       // seconds a call may take
  double total_timeout = 0;  // seconds all calls may take; 0: no limit
  bool verbose = false;      // report each call on standard error
};
void SetCallOptions(const CallOptions& options);

/// Calls end within this time from now, whatever the options.
void LimitCalls(double seconds);

/// Called before the first call that changes something.
void BeforeFirstChange(std::function<void()> function);

/// While one lives, the total time limit stands still: a person may think.
class Pause {
 public:
  Pause();
  ~Pause();

  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;

 private:
  double began;
};

}  // namespace tool
