// The daemons of a soak run, in a process that can be killed and started again on the
// same ports.
#pragma once

#include <optional>
#include <string>

#include "support/child_program.h"

namespace load {

class DaemonProcess {
 public:
  /// Starts `program` and points the environment of this process at it.
  explicit DaemonProcess(std::string program);

  /// Kills it without warning and starts it again; returns when it serves.
  void Restart();

 private:
  std::string program;
  std::string network_manager_port = "0";
  std::string dapi_port = "0";
  std::optional<support::ChildProgram> process;
};

}  // namespace load
