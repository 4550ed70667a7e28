// The rollback process: it restores the previous configuration of an interface
// unless it is told in time to keep the new one. It runs in a session of its own,
// so that neither the end of networkgrpc nor the loss of its terminal stops it.
//
// Lifetime: constructed before the first gRPC call of the process, because a fork
//   after it could hang. The rollback process ends by itself.
#pragma once

#include <string>

namespace tool {

/// networkgrpc's side.
class Rollback {
 public:
  Rollback();
  ~Rollback();  // without Keep before, the configuration is restored

  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;

  /// Hands over the configuration to restore, as a serialised message, and starts
  /// the limit, which must be long enough for the change to be made.
  void Arm(const std::string& configuration, double seconds);
  /// Restarts the limit, now that the change is made.
  void Restart(double seconds);
  /// Keeps the new configuration. False if it was too late.
  bool Keep();
  /// Restores the previous configuration now, if that has not happened yet. False
  /// if it failed.
  bool Restore();

 private:
  void Send(const std::string& message) const;
  std::string Receive() const;

  int socket = -1;
  std::string outcome;  // empty until the rollback process has reported it
};

/// The argument that makes networkgrpc the rollback process, with its end of the
/// socket as standard input.
inline constexpr const char* kRollbackCommand = "__rollback";

/// The rollback process; returns its exit status.
int RunRollback();

}  // namespace tool
