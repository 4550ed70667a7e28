// A daemon in its own process, so that a test can kill, freeze and restart it.
#pragma once

#include <string>

#include "support/child_program.h"
#include "support/scripted_daemon.h"

namespace faults {

/// A scripted daemon that serves both services on one port.
class ChildDaemon {
 public:
  /// Starts the process, which does not listen yet.
  explicit ChildDaemon(int port, const std::string& host = "127.0.0.1");

  /// Listens on `host`:`port`. Returns when it does.
  void Serve();

  /// Answers exactly this request with these bytes from now on.
  void Answer(const support::Request& request, const std::string& reply);
  /// Never answers exactly this request from now on.
  void Hang(const support::Request& request);
  /// Waits until this many requests have arrived since the last ForgetRequests();
  /// false after 20 seconds.
  bool WaitForRequests(std::size_t count);
  void ForgetRequests();

  void Kill() { program.Kill(); }
  void Freeze() { program.Freeze(); }
  void Thaw() { program.Thaw(); }

 private:
  void Script(const std::string& command, const support::Request& request,
              const std::string& reply);

  std::string address;
  support::ChildProgram program;
};

}  // namespace faults
