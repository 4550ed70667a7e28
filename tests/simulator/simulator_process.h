// The simulator program as a child process of the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace support {

class SimulatorProcess {
 public:
  /// Starts it and waits for its ready line. Throws std::runtime_error if it ends
  /// before, or is not ready after 20 seconds.
  explicit SimulatorProcess(const std::vector<std::string>& options = {});
  /// Kills it if it still runs. It also dies with the test.
  ~SimulatorProcess();

  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

  /// Waits for the ready line of the next of several devices, to which the
  /// functions below refer from then on. Throws like the constructor.
  void NextDevice();

  /// The whole line, newline included.
  const std::string& ReadyLine() const { return ready_line; }
  /// The values of the ready line; empty if it lacks them.
  std::string NetworkManagerUrl() const { return Value("network_manager_url="); }
  std::string DapiUrl() const { return Value("grpc_dapi_url="); }

  void Signal(int signal) const;
  /// Sends the signal and waits for the end, at most 20 seconds. Returns the exit
  /// status, or 128 plus the signal that ended it.
  int End(int signal);

 private:
  std::string Value(const std::string& key) const;

  pid_t process = -1;
  int out = -1;  // its standard output
  std::string ready_line;
};

/// The path of the program.
std::string SimulatorProgram();

}  // namespace support
