// What a simulated daemon does instead of answering properly.
//
// A fault is a member of the state document's "faults", or a string for command
// lines and tests:
//
//   GetName:status=UNAVAILABLE,times=2   twice that status, then as usual
//   GetName:status=INTERNAL,message=gone that status with that message
//   SetName:reject                       the reply says success false
//   DAPI.*:delay=250                     as usual, 250 ms later
//   GetRxChannelLink:malformed           a reply that cannot be parsed
//   NetworkManager.*:stop                the daemon is stopped
//
// A call with a fault changes nothing on the device, except if its only fault is
// a delay.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace simulator {

enum class Daemon { kNetworkManager, kDapi };

/// "NetworkManager" or "DAPI", as the schema names the services.
const char* Name(Daemon daemon);

/// "DAPI.GetName", from "GetName".
std::string FullName(Daemon daemon, const std::string& method);

enum class FaultKind {
  kNone,       // as usual; for a delay alone
  kStatus,     // fails with Fault::status and Fault::message
  kReject,     // replies success false; for methods with such a reply
  kEmpty,      // replies with no bytes: every field has its zero value
  kMalformed,  // replies with bytes that no message can be
  kOversize,   // replies with more than the client's limit of 4 MiB
  kFreeze,     // does not reply until the fault is cleared
  kDrop,       // drops the connection of the call
  kStop        // the daemon is stopped; for all methods of a daemon
};

struct Fault {
  std::string method;  // "DAPI.GetName", "GetName", "DAPI.*" or "*"
  FaultKind kind = FaultKind::kNone;
  std::int32_t status = 0;     // gRPC status code, for kStatus
  std::string message;         // for kStatus
  std::uint32_t delay_ms = 0;  // before everything else
  std::uint32_t times = 0;     // number of calls with this fault; 0: all
};

/// Not a valid fault; what() says why.
class BadFault : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// Reads the string form above, in which a message comes last. Throws BadFault.
Fault ParseFault(const std::string& string);

/// The string form.
std::string ToString(const Fault& fault);

/// Throws BadFault if there is no such method, or the method cannot have that
/// fault.
void Check(const Fault& fault);

/// Throws BadFault if the pattern, in the form of Fault::method, matches no method.
void CheckPattern(const std::string& pattern);

/// True if the pattern matches the method with this full name.
bool Matches(const std::string& pattern, const std::string& method);

/// True if the fault stops this daemon.
bool Stops(const Fault& fault, Daemon daemon);

}  // namespace simulator
