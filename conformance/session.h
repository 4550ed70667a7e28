// Calls to the daemons for the checks: messages as JSON, and every call and answer kept for
// the report. The program knows the schemas (wire_schema/), not the generated classes, so
// that it can also send what these cannot.
#pragma once

#include <grpcpp/channel.h>
#include <grpcpp/support/status.h>

#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "state_document/json.h"
#include "tools/daemon.h"
#include "wire_schema/wire_schema.h"

namespace conformance {

using state_document::Json;
using Channel = std::shared_ptr<grpc::Channel>;

/// Ends a check: the daemon does not do what is expected.
struct Failed {
  std::string problem;
};

/// Ends a check: it cannot be made, for this reason.
struct Skipped {
  std::string reason;
};

/// Ends the run: SIGINT, SIGTERM or SIGHUP.
struct Interrupted {};

void Expect(bool is_so, const std::string& problem);

struct Reply {
  grpc::StatusCode code = grpc::StatusCode::OK;
  std::string message;  // of the status
  std::string bytes;
  Json json;            // null if the status is not OK or the reply is no such message
  std::string problem;  // why it is none
  double milliseconds = 0;

  bool IsOk() const { return code == grpc::StatusCode::OK && !json.is_null(); }
};

/// One call for the report.
struct Exchange {
  std::string sent;
  std::string came;
};

struct Limits {
  double timeout = 5;     // seconds for a call
  double keepalive = 20;  // seconds
  std::string restart;    // the command
};

/// Of the whole run. Threads: one.
class Session {
 public:
  Session(Limits wanted, std::vector<tool::Daemon> checked)
      : limits(std::move(wanted)), daemons(std::move(checked)) {}

  /// Of the check that runs now.
  tool::Daemon daemon = tool::Daemon::kNone;
  std::vector<Exchange> exchanges;

  /// The checks that have failed.
  std::set<std::string> failed;
  /// Throws Skipped if that check has failed. A call needs answers.METHOD.
  void Need(const std::string& check) const;

  /// Makes a call, whatever becomes of it. Throws Failed only if there is no answer within
  /// the time limit.
  Reply Send(const std::string& method, const Json& request = Json::object());
  /// The same with bytes, and through a channel of the caller.
  Reply SendBytes(const std::string& method, const std::string& request, const Channel& channel);
  Reply SendBytes(const std::string& method, const std::string& request);
  /// The same for a path that no schema has.
  Reply SendTo(const std::string& path, const std::string& request);
  /// The same call several times at once, each over the next one of the channels.
  std::vector<Reply> SendAtOnce(const std::string& method, std::size_t count,
                                const std::vector<Channel>& channels);

  /// The reply. Throws Failed unless the call succeeds.
  Json Read(const std::string& method, const Json& request = Json::object());
  /// One member of such a reply.
  Json Member(const std::string& method, const std::string& member,
              const Json& request = Json::object());
  /// Whether the daemon confirms the change; false if it rejects it. Throws Failed for any
  /// other answer.
  bool Change(const std::string& method, const Json& request = Json::object());

  /// A method of the daemon that reads without parameters, and answers.
  std::string AnyRead() const;
  /// A connection of its own, with the library's keepalive; by default to the endpoint of
  /// the daemon.
  Channel Connect(tool::Daemon to, const std::string& endpoint = "") const;

  const Limits limits;
  const std::vector<tool::Daemon> daemons;  // that are checked

  // What several checks share.
  std::map<tool::Daemon, Channel> idle;
  std::chrono::steady_clock::time_point idle_since;
  bool has_restarted = false;
  Json interfaces = Json::array();  // before the restart

 private:
  /// The connection that all checks share. A daemon that has ended it, or has restarted, is
  /// given time.
  const Channel& Shared(tool::Daemon of);
  Reply Finish(const std::string& method, const std::string& sent, Reply reply);
  /// The reply, over the connection that all checks share.
  Reply Noted(tool::Daemon of, Reply reply);

  std::set<tool::Daemon> absent;       // did not come back within the time limit
  std::set<tool::Daemon> unavailable;  // the last call may have lost the connection
};

/// "ostrevan.grpcdapi.DAPI"
std::string ServiceOf(tool::Daemon daemon);

/// The method of this name. It must be in the schemas.
const wire_schema::WireMethod& MethodOf(const std::string& name);

tool::Daemon DaemonOf(const std::string& method);

/// As text, at most so many bytes of it.
std::string Short(const std::string& text, std::size_t most);

}  // namespace conformance
