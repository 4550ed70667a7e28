// The simulator program as a child of the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace support {

class SimulatorProcess {
 public:
  /// Starts it and waits until it is ready. Throws std::runtime_error when it
  /// ends before, or is not ready after 20 seconds.
  explicit SimulatorProcess(const std::vector<std::string>& options = {});
  /// Kills it when it still runs. It also dies with the test.
  ~SimulatorProcess();

  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

  /// Waits for the ready line of the next of several devices, which the functions
  /// below speak of from then on. Throws like the constructor.
  void NextDevice();

  /// The whole line, newline included.
  const std::string& ReadyLine() const { return ready_line; }
  /// What the ready line says; empty when it does not say it.
  std::string NetworkManagerUrl() const { return Value("network_manager_url="); }
  std::string DapiUrl() const { return Value("grpc_dapi_url="); }

  /// Sends the signal and waits for the end, 20 seconds at most. Gives the exit
  /// status, or 128 plus the signal that ended it.
  int End(int signal);

 private:
  std::string Value(const std::string& key) const;

  pid_t process = -1;
  int out = -1;  // its standard output
  std::string ready_line;
};

/// Where the program is.
std::string SimulatorProgram();

}  // namespace support
