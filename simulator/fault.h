// What a simulated daemon does instead of answering properly.
//
// A fault is one member of the state file's "faults", and one text for command
// lines and tests:
//
//   GetName:status=UNAVAILABLE,times=2   twice that status, then as usual
//   GetName:status=INTERNAL,message=gone that status with that message
//   SetName:refuse                       the reply says false
//   DAPI.*:delay=250                     a quarter of a second late, else as usual
//   GetRxChannelLink:malformed           a reply that cannot be parsed
//   NetworkManager.*:stop                the daemon is not there
//
// A call that meets a fault changes nothing on the device, except that a late
// one does as usual.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace simulator {

/// The two daemons. Their methods are spelled "DAPI.GetName", or "GetName".
enum class Daemon { kNetworkManager, kDapi };

/// "NetworkManager" or "DAPI", as the schema names the services.
const char* Name(Daemon daemon);

enum class FaultKind {
  kNone,       // as usual; for a delay alone
  kStatus,     // fails with Fault::status and Fault::message
  kRefuse,     // replies success false; for the methods that reply so
  kEmpty,      // replies with no bytes: every field has its zero value
  kMalformed,  // replies with bytes that no message can be
  kOversize,   // replies with more than the 4 MiB that a client takes
  kFreeze,     // never replies, unless the fault is taken back
  kDrop,       // cuts the connection that the call came by
  kStop        // the daemon is stopped; for all methods of a daemon
};

struct Fault {
  std::string method;  // "DAPI.GetName", "GetName", "DAPI.*" or "*"
  FaultKind kind = FaultKind::kNone;
  std::int32_t status = 0;     // gRPC's status codes, for kStatus
  std::string message;         // for kStatus
  std::uint32_t delay_ms = 0;  // before anything else
  std::uint32_t times = 0;     // how many calls meet it; 0: all
};

/// The text says no fault, or one that cannot be; what() says why.
class BadFault : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// From the text form above, in which a message comes last. Throws BadFault.
Fault ParseFault(const std::string& text);

/// The text form.
std::string ToText(const Fault& fault);

/// Throws BadFault when there is no such method, or the method cannot have that
/// fault.
void Check(const Fault& fault);

/// Throws BadFault when no method is spelled so, as Fault::method spells them.
void CheckPattern(const std::string& pattern);

/// True when the pattern is for this method of this daemon.
bool Matches(const std::string& pattern, Daemon daemon, const std::string& method);

/// The daemon of a fault of the kind kStop.
Daemon StoppedDaemon(const Fault& fault);

/// "refuse" and so on; BadFault for a word that is none.
const char* Name(FaultKind kind);
FaultKind FaultKindOf(const std::string& name);

/// "UNAVAILABLE" and so on; BadFault for a word that is none.
const char* StatusName(std::int32_t status);
std::int32_t StatusOf(const std::string& name);

}  // namespace simulator
