// A gRPC server on loopback that knows no schema: it records what it receives,
// byte for byte, and answers what a test tells it to.
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

  bool operator==(const Request& other) const { return path == other.path && bytes == other.bytes; }
};
std::ostream& operator<<(std::ostream& out, const Request& request);

/// One answer. With a status other than OK the bytes are not sent.
struct Answer {
  std::string bytes;
  grpc::Status status = grpc::Status::OK;
  bool hangs = false;  // never answered: the call ends with its connection
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

  /// Answers every call of `path` so from now on. A path without an answer is
  /// UNIMPLEMENTED.
  void Script(const std::string& path, Answer answer);
  /// Answers the next calls of `path` one by one before the lasting answer holds.
  void ScriptNext(const std::string& path, Answer answer);
  /// Answers this very request so from now on, before all else.
  void ScriptFor(Request request, Answer answer);
  /// Answers every call of `path` from now on with what `answer` makes of the
  /// request's bytes; it may be asked by several threads at once.
  void ScriptEach(const std::string& path, std::function<Answer(const std::string&)> answer);
  /// Keeps no requests from now on: for runs too long to remember all of them.
  void ForgetRequests();

  /// What has arrived since the last time this was asked.
  std::vector<Request> TakeRequests();
  /// Waits until `count` requests have arrived; false after 20 seconds.
  bool WaitForRequests(std::size_t count);
  /// Whether the last call to arrive carried a deadline.
  bool LastCallHadDeadline();

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
  bool last_had_deadline = false;
  int port = 0;
  std::unique_ptr<grpc::Server> server;
};

/// A loopback port on which nobody listens while this lives: connections are
/// refused, and no other process gets it.
class RefusedPort {
 public:
  RefusedPort();
  ~RefusedPort();

  RefusedPort(const RefusedPort&) = delete;
  RefusedPort& operator=(const RefusedPort&) = delete;

  std::string Url() const;

 private:
  int descriptor;
};

}  // namespace support
