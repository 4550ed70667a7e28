// A process that puts an interface's configuration back unless it is told in
// time that the new one may stay. It lives in a session of its own, so that
// neither the end of networkgrpc nor the loss of its terminal stops it.
//
// Lifetime: made before the first gRPC call of the process, because a fork
//   after it could hang. Ends by itself.
#pragma once

#include <string>

namespace tool {

class Guardian {
 public:
  Guardian();
  ~Guardian();  // without Keep before, the configuration is put back

  Guardian(const Guardian&) = delete;
  Guardian& operator=(const Guardian&) = delete;

  /// Hands over the configuration to put back, as a serialised wire message,
  /// and starts the limit: it must be long enough for the change to be made.
  void Arm(const std::string& configuration, double seconds);
  /// Starts the limit anew, now that the change is made.
  void Restart(double seconds);
  /// The new configuration may stay. False when it was too late.
  bool Keep();
  /// Has the configuration put back now, unless it is already, and tells whether
  /// that was done.
  bool PutBack();

 private:
  void Send(const std::string& message) const;
  std::string Receive() const;

  int socket = -1;
  std::string outcome;  // empty until the guardian has told it
};

namespace guardian {

/// The argument that makes networkgrpc a guardian, with its socket as
/// standard input.
inline constexpr const char* kCommand = "__guard";

int Main();

}  // namespace guardian
}  // namespace tool
