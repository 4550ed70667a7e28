// A daemon in its own process, so that a test can kill, freeze and restart it.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

#include "tests/support/scripted_daemon.h"

namespace faults {

/// A loopback port reserved for this test. It stays bound, so that the system does not
/// give it to another process while no daemon listens on it.
class ReservedPort {
 public:
  ReservedPort();
  ~ReservedPort();

  ReservedPort(const ReservedPort&) = delete;
  ReservedPort& operator=(const ReservedPort&) = delete;

  int Number() const { return number; }

 private:
  int descriptor;
  int number = 0;
};

/// A scripted daemon that serves both services on one port.
class ChildDaemon {
 public:
  /// Starts the process, which does not listen yet.
  explicit ChildDaemon(int port, const std::string& host = "127.0.0.1");
  /// Kills the process.
  ~ChildDaemon();

  ChildDaemon(const ChildDaemon&) = delete;
  ChildDaemon& operator=(const ChildDaemon&) = delete;

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

  void Kill();
  void Freeze();
  void Thaw();

 private:
  void Script(const std::string& command, const support::Request& request,
              const std::string& reply);
  std::string Ask(const std::string& command);

  std::string address;
  pid_t process = 0;
  std::FILE* commands = nullptr;
  std::FILE* answers = nullptr;
};

}  // namespace faults
