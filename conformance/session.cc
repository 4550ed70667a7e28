#include "conformance/session.h"

#include <grpcpp/client_context.h>
#include <grpcpp/generic/generic_stub.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <sstream>

#include "client/channel.h"
#include "state_document/table.h"
#include "tools/call.h"
#include "tools/interrupt.h"
#include "wire_schema/byte_buffer.h"

namespace conformance {
namespace {

using Clock = std::chrono::steady_clock;
using grpc::StatusCode;

constexpr const char* kAnswers = "answers.";
constexpr std::size_t kMostShown = 2000;    // bytes of a message in a report
constexpr std::size_t kMostExchanges = 20;  // of one check; the latest

// A daemon that understood a change and did not make it answers with one of these, or with
// `success` false. Any other is that of a failure.
constexpr StatusCode kRejections[] = {
    StatusCode::INVALID_ARGUMENT,    StatusCode::NOT_FOUND,          StatusCode::ALREADY_EXISTS,
    StatusCode::PERMISSION_DENIED,   StatusCode::RESOURCE_EXHAUSTED, StatusCode::OUT_OF_RANGE,
    StatusCode::FAILED_PRECONDITION, StatusCode::UNAUTHENTICATED,    StatusCode::ABORTED};

std::string Name(StatusCode code) {
  return state_document::NameOf(state_document::kStatuses, code).get<std::string>();
}

std::string Text(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Hex(const std::string& bytes) {
  std::string hex;
  for (const char byte : bytes.substr(0, kMostShown / 2)) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
    hex += digits;
  }
  return hex;
}

std::string Came(const Reply& reply) {
  std::ostringstream text;
  text.precision(1);
  text << Name(reply.code) << (reply.message.empty() ? "" : ": " + reply.message);
  if (reply.code == StatusCode::OK)
    text << ' '
         << (reply.problem.empty() ? Text(reply.json)
                                   : "(" + reply.problem + ") " + Hex(reply.bytes));
  text << std::fixed << " after " << reply.milliseconds << " ms";
  return Short(text.str(), kMostShown);
}

// Several calls at once.
class Batch {
 public:
  void Start(const Channel& channel, const std::string& path, const std::string& request,
             double timeout) {
    Call& call = *calls.emplace_back(std::make_unique<Call>(channel));
    call.request = wire_schema::ToByteBuffer(request);
    call.context.set_deadline(std::chrono::system_clock::now() +
                              std::chrono::milliseconds(static_cast<int>(timeout * 1000)));
    call.interruptible = std::make_unique<tool::interrupt::Call>(call.context);
    call.stub.UnaryCall(&call.context, path, {}, &call.request, &call.reply,
                        [this, &call](grpc::Status status) {
                          const std::lock_guard<std::mutex> lock(mutex);
                          call.status = std::move(status);
                          call.end = Clock::now();
                          ++ended;
                          changed.notify_all();
                        });
  }

  std::vector<Reply> Wait() {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return ended == calls.size(); });
    std::vector<Reply> replies;
    for (const auto& call : calls) {
      Reply& reply = replies.emplace_back();
      reply.code = call->status.error_code();
      reply.message = call->status.error_message();
      if (call->status.ok()) reply.bytes = wire_schema::ToString(call->reply);
      reply.milliseconds =
          std::chrono::duration<double, std::milli>(call->end - call->start).count();
    }
    return replies;
  }

 private:
  struct Call {
    explicit Call(const Channel& channel) : stub(channel) {}
    grpc::GenericStub stub;
    grpc::ClientContext context;
    std::unique_ptr<tool::interrupt::Call> interruptible;
    grpc::ByteBuffer request;
    grpc::ByteBuffer reply;
    grpc::Status status;
    Clock::time_point start = Clock::now();
    Clock::time_point end;
  };

  std::vector<std::unique_ptr<Call>> calls;
  std::mutex mutex;
  std::condition_variable changed;
  std::size_t ended = 0;
};

std::string PathOf(const wire_schema::WireMethod& method) {
  return '/' + method.service + '/' + method.name;
}

// As the library reads it: a string that is not UTF-8 fails the call there.
void Decode(const wire_schema::WireMethod& method, Reply& reply) {
  if (reply.code != StatusCode::OK) return;
  reply.json = wire_schema::Decode(*method.reply, reply.bytes);
  if (reply.json.is_null()) reply.problem = "the reply is no " + method.reply->name;
  try {
    static_cast<void>(reply.json.dump());
  } catch (const Json::type_error&) {
    reply.json = nullptr;
    reply.problem = "a string in the reply is not UTF-8";
  }
}

}  // namespace

void Expect(bool is_so, const std::string& problem) {
  if (!is_so) throw Failed{problem};
}

std::string Short(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  return text.substr(0, most) + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string ServiceOf(tool::Daemon daemon) {
  return daemon == tool::Daemon::kDante ? "ostrevan.grpcdapi.DAPI"
                                        : "ostrevan.networkmanager.NetworkManager";
}

const wire_schema::WireMethod& MethodOf(const std::string& name) {
  const auto& methods = wire_schema::AllMethods();
  return *std::find_if(methods.begin(), methods.end(),
                       [&](const wire_schema::WireMethod& it) { return it.name == name; });
}

tool::Daemon DaemonOf(const std::string& method) {
  return MethodOf(method).service == ServiceOf(tool::Daemon::kDante)
             ? tool::Daemon::kDante
             : tool::Daemon::kNetworkManager;
}

void Session::Need(const std::string& check) const {
  if (failed.count(check) != 0) throw Skipped{"see " + check};
}

Reply Session::Finish(const std::string& method, const std::string& sent, Reply reply) {
  if (tool::interrupt::Signal() != 0) throw Interrupted{};
  exchanges.push_back({Short(method + ' ' + sent, kMostShown), Came(reply)});
  if (exchanges.size() > kMostExchanges) exchanges.erase(exchanges.begin());
  if (reply.code == StatusCode::DEADLINE_EXCEEDED &&
      reply.milliseconds >= limits.timeout * 1000 - 1)
    throw Failed{method + " was not answered within " +
                 std::to_string(static_cast<int>(limits.timeout * 1000)) + " ms"};
  return reply;
}

const Channel& Session::Shared(tool::Daemon of) {
  const Channel& channel = tool::ChannelTo(of);
  const auto now = std::chrono::system_clock::now();
  // The calls on a connection that is closed fail before the channel knows that it is.
  if (unavailable.erase(of) != 0)
    channel->WaitForStateChange(GRPC_CHANNEL_READY, now + std::chrono::seconds(1));
  const auto end = now + std::chrono::milliseconds(static_cast<int>(limits.timeout * 1000));
  if (absent.count(of) == 0 && !channel->WaitForConnected(end)) absent.insert(of);
  return channel;
}

Reply Session::Noted(tool::Daemon of, Reply reply) {
  if (reply.code == StatusCode::UNAVAILABLE) unavailable.insert(of);
  return reply;
}

Reply Session::SendTo(const std::string& path, const std::string& request) {
  Batch batch;
  batch.Start(Shared(daemon), path, request, limits.timeout);
  return Noted(daemon, Finish(path, Hex(request), batch.Wait().front()));
}

Reply Session::SendBytes(const std::string& method, const std::string& request,
                         const Channel& channel) {
  Need(kAnswers + method);
  const wire_schema::WireMethod& called = MethodOf(method);
  Batch batch;
  batch.Start(channel, PathOf(called), request, limits.timeout);
  Reply reply = batch.Wait().front();
  Decode(called, reply);
  const Json sent = wire_schema::Decode(*called.request, request);
  return Finish(method, sent.is_null() ? Hex(request) : Text(sent), std::move(reply));
}

Reply Session::SendBytes(const std::string& method, const std::string& request) {
  const tool::Daemon of = DaemonOf(method);
  return Noted(of, SendBytes(method, request, Shared(of)));
}

Reply Session::Send(const std::string& method, const Json& request) {
  return SendBytes(method, wire_schema::Encode(*MethodOf(method).request, request));
}

std::vector<Reply> Session::SendAtOnce(const std::string& method, std::size_t count,
                                       const std::vector<Channel>& channels) {
  const wire_schema::WireMethod& called = MethodOf(method);
  Batch batch;
  for (std::size_t i = 0; i < count; ++i)
    batch.Start(channels[i % channels.size()], PathOf(called), "", limits.timeout);
  std::vector<Reply> replies = batch.Wait();
  for (Reply& reply : replies) {
    Decode(called, reply);
    reply = Finish(method, "{}", std::move(reply));
  }
  return replies;
}

Json Session::Read(const std::string& method, const Json& request) {
  const Reply reply = Send(method, request);
  Expect(reply.code == StatusCode::OK, method + " failed with " + Name(reply.code));
  Expect(reply.problem.empty(), method + ": " + reply.problem);
  return reply.json;
}

Json Session::Member(const std::string& method, const std::string& member, const Json& request) {
  return Read(method, request)[member];
}

bool Session::Change(const std::string& method, const Json& request) {
  const Reply reply = Send(method, request);
  if (std::find(std::begin(kRejections), std::end(kRejections), reply.code) !=
      std::end(kRejections))
    return false;
  Expect(reply.code == StatusCode::OK,
         method + " failed with " + Name(reply.code) + ", which is not how a change is rejected");
  Expect(reply.problem.empty(), method + ": " + reply.problem);
  return reply.json.value("success", true);  // Reconnect has no such field
}

std::string Session::AnyRead() const {
  // These two are needed for nothing else.
  const char* const usual = daemon == tool::Daemon::kDante ? "GetModelName" : "GetDNSList";
  if (failed.count(std::string(kAnswers) + usual) == 0) return usual;
  for (const wire_schema::WireMethod& method : wire_schema::AllMethods())
    if (method.service == ServiceOf(daemon) && method.request->fields.empty() &&
        method.name.compare(0, 3, "Get") == 0 && failed.count(kAnswers + method.name) == 0)
      return method.name;
  throw Skipped{"no method answers"};
}

Channel Session::Connect(tool::Daemon to, const std::string& endpoint) const {
  const std::string target = endpoint.empty() ? tool::EndpointSetting(to).Value() : endpoint;
  grpc::ChannelArguments own;
  own.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
  return client::MakeChannel({"", target.c_str(), "", ""}, own);
}

}  // namespace conformance
