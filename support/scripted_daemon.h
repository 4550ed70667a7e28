// A gRPC server on loopback that knows no schema: it records what it receives, byte for
// byte, and answers with the bytes or the status that a test has set. It rejects compressed
// requests.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>
#include <grpcpp/support/status.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace support {

/// One call as it arrived.
struct Request {
  std::string path;   // "/package.Service/Method"
  std::string bytes;  // the serialized message
  // What the library never sends: a deadline, metadata, an authority that is not the target's.
  std::string besides = {};

  bool operator==(const Request& other) const {
    return path == other.path && bytes == other.bytes && besides == other.besides;
  }
};
std::ostream& operator<<(std::ostream& out, const Request& request);

/// One answer. With a status other than OK, bytes are only sent if there are any.
struct Answer {
  std::string bytes;
  grpc::Status status = grpc::Status::OK;
  bool hangs = false;  // never sent: the call ends with its connection
};

inline Answer Failure(grpc::StatusCode code) { return {"", grpc::Status(code, "scripted")}; }

class ScriptedDaemon : private grpc::CallbackGenericService {
 public:
  /// Starts serving, by default on a loopback port that the system chooses.
  explicit ScriptedDaemon(const std::string& address = "127.0.0.1:0");
  /// Ends every call that is still open.
  ~ScriptedDaemon() override;

  ScriptedDaemon(const ScriptedDaemon&) = delete;
  ScriptedDaemon& operator=(const ScriptedDaemon&) = delete;

  /// "ipv4:127.0.0.1:PORT", when the system chose the port.
  std::string Url() const;

  /// Sends this answer to every call of `path` from now on. A path without an answer is
  /// UNIMPLEMENTED.
  void Script(const std::string& path, Answer answer);
  /// Sends this answer to one call of `path`; several wait in a queue. They come before the
  /// answer of Script().
  void ScriptNext(const std::string& path, Answer answer);
  /// Sends this answer to exactly this request from now on; it precedes all others.
  void ScriptFor(Request request, Answer answer);
  /// Sends what `answer` returns for the bytes of the request to every call of `path` from
  /// now on. Several threads may call `answer` at the same time.
  void ScriptEach(const std::string& path, std::function<Answer(const std::string&)> answer);
  /// Stores no requests from now on: for runs with too many of them.
  void ForgetRequests();

  /// Returns the requests that have arrived since the last call.
  std::vector<Request> TakeRequests();
  /// Waits until `count` requests have arrived; false after 20 seconds.
  bool WaitForRequests(std::size_t count);

 private:
  class Call;

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* context) override;
  Answer Receive(Request request);

  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<Request> requests;
  bool forgets = false;
  std::map<std::string, std::function<Answer(const std::string&)>> lasting;
  std::map<std::string, std::deque<Answer>> next;
  std::map<std::pair<std::string, std::string>, Answer> exact;
  int port = 0;
  std::unique_ptr<grpc::Server> server;
};

/// A loopback port reserved for this process: it stays bound, so that the system does not
/// give it to another. Connections are refused until a daemon is started on it.
class ReservedPort {
 public:
  ReservedPort();
  ~ReservedPort();

  ReservedPort(const ReservedPort&) = delete;
  ReservedPort& operator=(const ReservedPort&) = delete;

  int Number() const { return number; }
  std::string Url() const;

 private:
  int descriptor;
  int number = 0;
};

}  // namespace support
