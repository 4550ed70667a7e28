// The time limit of a command. The library's calls carry no deadline, so the
// limit ends the process, whatever a call is doing.
#pragma once

#include <string>

#include "tools/daemon.h"

namespace tool::deadline {

/// What is written when the limit passes, and how long it is.
struct Limit {
  double seconds = 30;
  bool json = false;
  std::string command;  // as in the JSON envelope
};

/// Starts the limit anew. When it passes, the process writes why, to standard
/// output as JSON or else to standard error, and exits with kTimeLimit.
void Start(const Limit& limit);

/// Starts a limit that ends the process quietly, with kDone.
void StartQuiet(double seconds);

/// Takes the limit away, for good or until the next Start.
void Stop();

/// Says which daemon is asked from now on, for the line that is written.
void Asking(Daemon daemon);

}  // namespace tool::deadline
