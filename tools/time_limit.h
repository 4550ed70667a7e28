// The time limit of a command. The library's calls have no deadline, so the limit
// ends the process, whatever a call is doing.
#pragma once

#include <string>

#include "tools/daemon.h"

namespace tool::time_limit {

/// How long a command may take, and in which form its failure is reported.
struct Limit {
  double seconds = 30;
  bool json = false;
  std::string command;  // as in the JSON object
};

/// Starts or restarts the limit. When it passes, the process reports that, on
/// standard output as JSON or else on standard error, and exits with kTimeLimit.
void Start(const Limit& limit);

/// Starts a limit that ends the process silently, with kDone.
void StartQuiet(double seconds);

/// Removes the limit until the next Start.
void Stop();

/// From now on the report names this daemon as the one that does not reply.
void Calling(Daemon daemon);

}  // namespace tool::time_limit
