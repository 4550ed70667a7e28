// A daemon in a process of its own, to be killed, stopped and started again.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

#include "tests/support/scripted_daemon.h"

namespace faults {

/// A loopback port that stays this test's while nobody listens on it, too: it is
/// bound all the time, so that the system gives it to nobody else.
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
  /// Starts its process, which serves nothing yet.
  explicit ChildDaemon(int port, const std::string& host = "127.0.0.1");
  /// Kills it.
  ~ChildDaemon();

  ChildDaemon(const ChildDaemon&) = delete;
  ChildDaemon& operator=(const ChildDaemon&) = delete;

  /// Serves `host`:`port` when this returns.
  void Serve();

  /// Answers this very request with these bytes from now on, or never.
  void Answer(const support::Request& request, const std::string& reply);
  void Hang(const support::Request& request);
  /// Waits until so many requests have arrived since the last ForgetRequests();
  /// false after 20 seconds.
  bool WaitForRequests(std::size_t count);
  void ForgetRequests();

  void Kill();
  void Freeze();
  void Thaw();

 private:
  std::string Ask(const std::string& command);

  std::string address;
  pid_t process = 0;
  std::FILE* commands = nullptr;
  std::FILE* answers = nullptr;
};

}  // namespace faults
