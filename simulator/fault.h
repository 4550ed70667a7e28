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
//   GetName:answer={"name":"x"}          as usual, but with this name
//   SetName:ignore                       the reply says success true, nothing changes
//   NetworkManager.*:stop                the daemon is stopped
//
// A call with a fault other than kNone changes nothing on the device.
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
  kNone,       // as usual, but later or edited
  kStatus,     // fails with Fault::status and Fault::message
  kReject,     // replies success false; for methods with such a reply
  kEmpty,      // replies with no bytes: every field has its zero value
  kMalformed,  // replies with bytes that no message can be
  kOversize,   // replies with more than the client's limit of 4 MiB
  kFreeze,     // does not reply until the fault is cleared
  kDrop,       // drops the connection of the call
  kStop,       // the daemon is stopped; for all methods of a daemon
  kIgnore,     // replies success true; for methods with such a reply
  kGoaway      // connections without a call for Fault::delay_ms get GOAWAY; for all methods
};

struct Fault {
  // "DAPI.GetName", "GetName", "DAPI.*" or "*"; or the path of a method that the schemas
  // lack
  std::string method;
  FaultKind kind = FaultKind::kNone;
  std::int32_t status = 0;     // gRPC status code, for kStatus
  std::string message;         // for kStatus
  std::uint32_t delay_ms = 0;  // before everything else
  std::uint32_t times = 0;     // number of calls with this fault; 0: all
  std::uint32_t after = 0;     // number of calls before the first one with this fault
  std::string when;            // JSON: calls whose request has these fields
  std::string request;         // JSON: fields that the device receives instead
  std::string answer;          // JSON: fields that are sent instead, with status OK
  std::string then;            // a method without parameters that the device receives next
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

/// True if the fault of this kind is one of this daemon as a whole.
bool IsOfDaemon(const Fault& fault, FaultKind kind, Daemon daemon);

/// True if the fault stops this daemon.
bool Stops(const Fault& fault, Daemon daemon);

}  // namespace simulator
