#include "support/scripted_daemon.h"

#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "support/hex.h"
#include "wire_schema/byte_buffer.h"

namespace support {
std::ostream& operator<<(std::ostream& out, const Request& request) {
  return out << request.path << " [" << ToHex(request.bytes) << "]" << request.besides;
}

namespace {

bool StartsWith(grpc::string_ref text, const std::string& start) {
  return text.substr(0, start.size()) == start;
}

bool EndsWith(grpc::string_ref text, const std::string& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// gRPC itself sends a user agent; the authority is the target's host.
std::string Besides(const grpc::GenericCallbackServerContext& context, int port) {
  std::string besides;
  if (context.deadline() != std::chrono::system_clock::time_point::max()) besides += " deadline";
  for (const auto& [key, value] : context.client_metadata())
    if (key != "user-agent" || !StartsWith(value, "grpc-c++/"))
      besides +=
          " " + std::string(key.data(), key.size()) + "=" + std::string(value.data(), value.size());
  const grpc::string_ref authority = context.ExperimentalGetAuthority();
  if (authority != "localhost" && !EndsWith(authority, ":" + std::to_string(port)))
    besides += " authority=" + std::string(authority.data(), authority.size());
  return besides;
}

}  // namespace

// One call: reads the one request, then writes the one reply.
class ScriptedDaemon::Call : public grpc::ServerGenericBidiReactor {
 public:
  Call(ScriptedDaemon& owner, const grpc::GenericCallbackServerContext& context)
      : daemon(owner), received{context.method(), "", Besides(context, owner.port)} {
    StartRead(&request);
  }

  void OnReadDone(bool ok) override {
    if (!ok) return Finish({grpc::StatusCode::INTERNAL, "no request"});
    received.bytes = wire_schema::ToString(request);
    const Answer answer = daemon.Receive(std::move(received));
    if (answer.hangs) return;
    if (!answer.status.ok() && answer.bytes.empty()) return Finish(answer.status);
    reply = wire_schema::ToByteBuffer(answer.bytes);
    StartWriteAndFinish(&reply, {}, answer.status);
  }

  // A hanging call ends here when its connection does.
  void OnCancel() override {
    if (!finished.exchange(true)) grpc::ServerGenericBidiReactor::Finish(grpc::Status::CANCELLED);
  }

  void OnDone() override { delete this; }

 private:
  void Finish(const grpc::Status& status) {
    if (!finished.exchange(true)) grpc::ServerGenericBidiReactor::Finish(status);
  }
  void StartWriteAndFinish(const grpc::ByteBuffer* buffer, grpc::WriteOptions options,
                           const grpc::Status& status) {
    if (!finished.exchange(true))
      grpc::ServerGenericBidiReactor::StartWriteAndFinish(buffer, options, status);
  }

  ScriptedDaemon& daemon;
  Request received;
  grpc::ByteBuffer request;
  grpc::ByteBuffer reply;
  std::atomic<bool> finished = false;
};

ScriptedDaemon::ScriptedDaemon(const std::string& address) {
  grpc::ServerBuilder builder;
  // Two daemons of one test must never share a port.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.SetMaxReceiveMessageSize(-1);
  for (const auto algorithm : {GRPC_COMPRESS_DEFLATE, GRPC_COMPRESS_GZIP})
    builder.SetCompressionAlgorithmSupportStatus(algorithm, false);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials(), &port);
  builder.RegisterCallbackGenericService(this);
  server = builder.BuildAndStart();
  if (server == nullptr || port == 0) throw std::runtime_error("cannot serve on " + address);
}

ScriptedDaemon::~ScriptedDaemon() {
  server->Shutdown(std::chrono::system_clock::now());
  server->Wait();
  // No call is left. ThreadSanitizer, to which gRPC is opaque, learns it from the mutex that
  // each call has locked.
  const std::lock_guard<std::mutex> lock(mutex);
}

std::string ScriptedDaemon::Url() const { return "ipv4:127.0.0.1:" + std::to_string(port); }

void ScriptedDaemon::Script(const std::string& path, Answer answer) {
  ScriptEach(path, [answer = std::move(answer)](const std::string&) { return answer; });
}

void ScriptedDaemon::ScriptEach(const std::string& path,
                                std::function<Answer(const std::string&)> answer) {
  const std::lock_guard<std::mutex> lock(mutex);
  lasting[path] = std::move(answer);
}

void ScriptedDaemon::ForgetRequests() {
  const std::lock_guard<std::mutex> lock(mutex);
  forgets = true;
  requests.clear();
}

void ScriptedDaemon::ScriptNext(const std::string& path, Answer answer) {
  const std::lock_guard<std::mutex> lock(mutex);
  next[path].push_back(std::move(answer));
}

void ScriptedDaemon::ScriptFor(Request request, Answer answer) {
  const std::lock_guard<std::mutex> lock(mutex);
  exact[{std::move(request.path), std::move(request.bytes)}] = std::move(answer);
}

std::vector<Request> ScriptedDaemon::TakeRequests() {
  const std::lock_guard<std::mutex> lock(mutex);
  return std::exchange(requests, {});
}

bool ScriptedDaemon::WaitForRequests(std::size_t count) {
  std::unique_lock<std::mutex> lock(mutex);
  return arrived.wait_for(lock, std::chrono::seconds(20), [&] { return requests.size() >= count; });
}

grpc::ServerGenericBidiReactor* ScriptedDaemon::CreateReactor(
    grpc::GenericCallbackServerContext* context) {
  return new Call(*this, *context);
}

Answer ScriptedDaemon::Receive(Request request) {
  const std::string bytes = request.bytes;
  std::function<Answer(const std::string&)> answer;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    const std::string path = request.path;
    if (!forgets) requests.push_back(std::move(request));
    arrived.notify_all();
    if (const auto scripted = exact.find({path, bytes}); scripted != exact.end())
      return scripted->second;
    if (auto& queue = next[path]; !queue.empty()) {
      Answer first = std::move(queue.front());
      queue.pop_front();
      return first;
    }
    const auto found = lasting.find(path);
    if (found == lasting.end()) return Failure(grpc::StatusCode::UNIMPLEMENTED);
    answer = found->second;
  }
  return answer(bytes);
}

ReservedPort::ReservedPort() : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int on = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (bind(descriptor, generic, size) != 0 || getsockname(descriptor, generic, &size) != 0)
    throw std::runtime_error("cannot reserve a loopback port");
  number = ntohs(address.sin_port);
}

ReservedPort::~ReservedPort() { close(descriptor); }

std::string ReservedPort::Url() const { return "ipv4:127.0.0.1:" + std::to_string(number); }

}  // namespace support
