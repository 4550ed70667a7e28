#include "simulator/dispatcher.h"

#include <grpcpp/alarm.h>
#include <grpcpp/support/byte_buffer.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include "simulator/connections.h"

namespace simulator {
namespace {

// One more byte than a client of default settings takes.
constexpr std::size_t kOversize = std::size_t{4} * 1024 * 1024 + 1;

// A field that says it is 127 bytes long, and two bytes.
constexpr const char* kMalformed =
    "\x0a\x7f"
    "ab";

std::string ToString(const grpc::ByteBuffer& buffer) {
  std::vector<grpc::Slice> slices;
  std::string bytes;
  buffer.Dump(&slices);
  for (const grpc::Slice& slice : slices)
    bytes.append(reinterpret_cast<const char*>(slice.begin()), slice.size());
  return bytes;
}

grpc::ByteBuffer ToByteBuffer(const std::string& bytes) {
  const grpc::Slice slice(bytes);
  return {&slice, 1};
}

// "GetName" of "/ostrevan.grpcdapi.DAPI/GetName".
std::string MethodOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

// One call: reads the one request, then writes the one reply. It ends once, by
// whoever comes first: the answer, or its client's giving up.
class Dispatcher::Call : public grpc::ServerGenericBidiReactor {
 public:
  Call(Dispatcher& receiver, const grpc::GenericCallbackServerContext& context)
      : dispatcher(receiver),
        method(FindMethod(receiver.daemon, MethodOf(context.method()))),
        peer(context.peer()) {
    StartRead(&request);
  }

  void OnReadDone(bool ok) override {
    if (method == nullptr) return End({grpc::StatusCode::UNIMPLEMENTED, "no such method"});
    if (!ok) return End({grpc::StatusCode::INTERNAL, "no request"});
    bytes = ToString(request);
    thaws_before = dispatcher.Thaws();
    fault = dispatcher.faults.Take(dispatcher.daemon, method->name).value_or(Fault{});
    dispatcher.faults.Record({0, Name(dispatcher.daemon) + std::string(".") + method->name,
                              method->show(bytes).dump(),
                              fault.method.empty() ? "" : ToText(fault)});
    if (fault.delay_ms == 0) return Act();
    if (!ActLater()) End(grpc::Status::CANCELLED);
  }

  /// Answers as the service does.
  void Answer() {
    std::string answer;
    const grpc::Status status = method->answer(dispatcher.service, bytes, answer);
    if (status.ok()) return End(answer);
    End(status);
  }

  void OnCancel() override {
    bool was_frozen = false;
    {
      const std::lock_guard<std::mutex> lock(dispatcher.mutex);
      given_up = true;
      was_frozen = dispatcher.frozen.erase(this) != 0;
      if (waits) late.Cancel();
    }
    if (was_frozen) End(grpc::Status::CANCELLED);
  }

  void OnDone() override { delete this; }

  bool IsFrozenBy(const std::string& pattern) const {
    return pattern.empty() || fault.method == pattern;
  }

 private:
  void Act() {
    switch (fault.kind) {
      case FaultKind::kNone:
      case FaultKind::kStop:
        return Answer();
      case FaultKind::kStatus:
        return End({static_cast<grpc::StatusCode>(fault.status), fault.message});
      case FaultKind::kRefuse:
        // The one field of the reply is false when it is not there.
        return method->replies_success ? End(std::string()) : Answer();
      case FaultKind::kEmpty:
        return End(std::string());
      case FaultKind::kMalformed:
        return End(std::string(kMalformed));
      case FaultKind::kOversize:
        return End(std::string(kOversize, '\0'));
      case FaultKind::kFreeze:
        return Freeze();
      case FaultKind::kDrop:
        CutConnectionOf(peer);
        return End(grpc::Status::CANCELLED);
    }
  }

  // False for a call that has been given up, which nothing else would end.
  bool ActLater() {
    const std::lock_guard<std::mutex> lock(dispatcher.mutex);
    if (given_up) return false;
    late.Set(std::chrono::system_clock::now() + std::chrono::milliseconds(fault.delay_ms),
             [this](bool elapsed) { elapsed ? Act() : End(grpc::Status::CANCELLED); });
    waits = true;
    return true;
  }

  // A thaw between this call's arrival and here counts.
  void Freeze() {
    bool ended = false;
    {
      const std::lock_guard<std::mutex> lock(dispatcher.mutex);
      ended = given_up;
      if (!ended && !dispatcher.IsThawedSince(thaws_before, fault.method)) {
        dispatcher.frozen.insert(this);
        return;
      }
    }
    if (ended) return End(grpc::Status::CANCELLED);
    Answer();
  }

  void End(const grpc::Status& status) { Finish(status); }
  void End(const std::string& answer) {
    reply = ToByteBuffer(answer);
    StartWriteAndFinish(&reply, {}, grpc::Status::OK);
  }

  Dispatcher& dispatcher;
  const Method* const method;
  const std::string peer;
  grpc::ByteBuffer request;
  grpc::ByteBuffer reply;
  std::string bytes;  // of the request
  Fault fault;
  std::uint64_t thaws_before = 0;
  bool given_up = false;
  bool waits = false;  // for `late`
  grpc::Alarm late;
};

Dispatcher::~Dispatcher() {
  // No call is left. ThreadSanitizer, which does not see inside gRPC, is shown it by
  // the mutex that each of them has held.
  const std::lock_guard<std::mutex> lock(mutex);
}

grpc::ServerGenericBidiReactor* Dispatcher::CreateReactor(
    grpc::GenericCallbackServerContext* context) {
  return new Call(*this, *context);
}

std::uint64_t Dispatcher::Thaws() {
  const std::lock_guard<std::mutex> lock(mutex);
  return thaws;
}

bool Dispatcher::IsThawedSince(std::uint64_t before, const std::string& pattern) const {
  return std::any_of(last_thaw.begin(), last_thaw.end(), [&](const auto& last) {
    return last.second > before && (last.first.empty() || last.first == pattern);
  });
}

void Dispatcher::Thaw(const std::string& pattern) {
  std::vector<Call*> thawed;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    last_thaw[pattern] = ++thaws;
    for (auto call = frozen.begin(); call != frozen.end();) {
      if ((*call)->IsFrozenBy(pattern)) {
        thawed.push_back(*call);
        call = frozen.erase(call);
      } else {
        ++call;
      }
    }
  }
  for (Call* call : thawed) call->Answer();
}

}  // namespace simulator
