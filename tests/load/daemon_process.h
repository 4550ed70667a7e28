// The daemons of a soak run, in a process that can be killed and started anew on
// the same ports.
#pragma once

#include <sys/types.h>

#include <string>

namespace load {

class DaemonProcess {
 public:
  /// Starts `program` and points the environment of this process at it.
  explicit DaemonProcess(std::string program);
  ~DaemonProcess();

  DaemonProcess(const DaemonProcess&) = delete;
  DaemonProcess& operator=(const DaemonProcess&) = delete;

  /// Kills it without warning and starts it again; returns when it serves.
  void Restart();

 private:
  void Start();
  void Kill();
  std::string ReadLine(int descriptor) const;

  std::string program;
  std::string network_manager_port = "0";
  std::string dapi_port = "0";
  pid_t child = 0;
  int input = -1;  // the child ends when this end of its standard input closes
};

}  // namespace load
