// The simulator in the background of a shell:
//
//   eval "$(networkgrpc-simulator --export)"
//
// The process that the shell waits for prints, when the other one is ready, what the
// shell is to evaluate, and exits. The other one serves, in a session of its own.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "simulator/descriptor.h"

namespace simulator {

class Background {
 public:
  /// Makes the second process. To be called before there are threads. Returns the exit
  /// status in the first process, when the second one is ready or has failed. Throws
  /// std::runtime_error.
  std::optional<int> Start();

  /// In the second process: lets the first one print this to standard output. From then
  /// on, nothing keeps a pipe to the caller open.
  void Ready(const std::string& lines);

 private:
  Descriptor pipe;
};

enum class Shell { kPosix, kFish };

/// What sets these variables, "name=value", and simulator_pid. `end` says with whom the
/// process ends.
std::string ExportLines(Shell shell, const std::vector<std::string>& variables,
                        const std::string& end);

/// The shell that reads what this process prints. Between the two there may be more
/// processes, such as a subshell that waits for this one: they write to the same pipe.
pid_t CallingShell();

/// Becomes readable when the process ends. Throws std::runtime_error if there is none.
Descriptor WatchProcess(pid_t process);

}  // namespace simulator
