#include "simulator/dispatcher.h"

#include <grpcpp/alarm.h>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "simulator/connections.h"
#include "simulator/method_table.h"
#include "wire_schema/byte_buffer.h"

namespace simulator {
namespace {

// One byte more than a client with default settings accepts.
constexpr std::size_t kOversize = std::size_t{4} * 1024 * 1024 + 1;

// A field of 127 bytes, according to its length, and two bytes.
constexpr const char* kMalformed =
    "\x0a\x7f"
    "ab";

// The message with some of its fields replaced.
std::string Edited(const wire_schema::WireMessage& message, const std::string& bytes,
                   const std::string& fields) {
  Json json = wire_schema::Decode(message, bytes);
  if (json.is_null()) json = Json::object();
  json.update(Json::parse(fields));
  return wire_schema::Encode(message, json);
}

// The method that a path such as "/ostrevan.grpcdapi.DAPI/GetName" names; null for
// that of another service and for any other spelling.
const Method* FindMethodAt(const std::string& path, Daemon daemon) {
  const std::string service = '/' + std::string(ServiceOf(daemon)) + '/';
  if (path.compare(0, service.size(), service) != 0) return nullptr;
  return FindMethod(daemon, path.substr(service.size()));
}

}  // namespace

// One call: reads the one request, then writes the one reply. Either its answer or
// its cancellation ends it, whichever comes first. What its functions throw, gRPC would
// drop, and the call would never end: without memory they abort, as gRPC does.
class Dispatcher::Call : public grpc::ServerGenericBidiReactor {
 public:
  Call(Dispatcher& receiver, const grpc::GenericCallbackServerContext& context)
      : dispatcher(receiver),
        method(FindMethodAt(context.method(), receiver.daemon)),
        peer(context.peer()),
        query{receiver.daemon,
              context.method(),
              method != nullptr ? FullName(receiver.daemon, method->name) : context.method(),
              "",
              std::chrono::system_clock::now(),
              context.deadline(),
              std::make_shared<Cancellation>()} {
    if (method == nullptr && dispatcher.device.backend == nullptr &&
        !dispatcher.device.faults.Has(query.path)) {
      Finish({grpc::StatusCode::UNIMPLEMENTED, "no such method"});
    } else {
      StartRead(&request);
    }
  }

  void OnReadDone(bool ok) noexcept override {
    if (!ok) return Finish({grpc::StatusCode::INTERNAL, "no request"});
    query.request = wire_schema::ToString(request);
    const auto& hold = dispatcher.device.hooks.hold;
    if (!hold) return Resume(true);
    if (!held->Take(this)) return Finish(grpc::Status::CANCELLED);
    const auto resume = [held = held](bool is_answered) {
      if (Call* const call = held->Release()) call->Resume(is_answered);
    };
    if (!hold(query.name, resume)) resume(true);
  }

  /// Answers as usual, but for the edits of the fault.
  void Answer() noexcept {
    if (method != nullptr && !fault.request.empty())
      query.request = Edited(*method->request, query.request, fault.request);
    if (Backend* const backend = dispatcher.device.backend.get()) {
      backend->Answer(query, [this](const Outcome& outcome) { End(outcome); });
    } else if (method == nullptr) {
      Finish({grpc::StatusCode::UNIMPLEMENTED, "no such method"});
    } else {
      Outcome outcome;
      outcome.status = method->answer(dispatcher.device, query.request, outcome.reply);
      std::string ignored;
      if (!fault.then.empty())
        FindWithoutParameters(fault.then)->answer(dispatcher.device, "", ignored);
      End(outcome);
    }
  }

  void OnCancel() noexcept override {
    query.cancellation->Cancel();
    bool ends = held->Cancel();
    {
      const std::lock_guard<std::mutex> lock(dispatcher.mutex);
      is_cancelled = true;
      ends = ends || (dispatcher.frozen.erase(this) != 0 && is_held);
      if (is_late) late.Cancel();
    }
    if (ends) Finish(grpc::Status::CANCELLED);
  }

  void OnDone() override { delete this; }

  bool IsFrozenBy(const std::string& pattern) const {
    return pattern.empty() || fault.method == pattern;
  }
  bool IsHeld() const { return is_held; }

 private:
  // A call that a hook holds. It outlives the call, which the client can end before.
  class Held {
   public:
    /// False for a cancelled call.
    bool Take(Call* held_call) {
      const std::lock_guard<std::mutex> lock(mutex);
      if (!is_cancelled) call = held_call;
      return !is_cancelled;
    }
    /// The call, for one caller; null for all others.
    Call* Release() {
      const std::lock_guard<std::mutex> lock(mutex);
      return std::exchange(call, nullptr);
    }
    /// True if the call was held.
    bool Cancel() {
      const std::lock_guard<std::mutex> lock(mutex);
      is_cancelled = true;
      return std::exchange(call, nullptr) != nullptr;
    }

   private:
    std::mutex mutex;
    Call* call = nullptr;
    bool is_cancelled = false;
  };

  void Resume(bool is_answered) noexcept {
    if (!is_answered) return Drop();
    const Json shown = method != nullptr ? method->show(query.request) : Json(nullptr);
    TakeFault(shown);
    dispatcher.device.calls.Record({0, query.name, shown.dump(), FaultText()});
    if (dispatcher.device.hooks.recorded) dispatcher.device.hooks.recorded();
    if (fault.delay_ms == 0) return Act();
    if (!ActLater()) Finish(grpc::Status::CANCELLED);
  }

  // In one step with the entry in `frozen`, so that a thaw finds every call whose
  // fault was taken before the fault was removed.
  void TakeFault(const Json& shown) {
    const std::lock_guard<std::mutex> lock(dispatcher.mutex);
    fault = dispatcher.device.faults.Take(query.name, shown).value_or(Fault{});
    if (fault.kind == FaultKind::kFreeze && !is_cancelled) dispatcher.frozen.insert(this);
  }

  void Act() noexcept {
    switch (fault.kind) {
      case FaultKind::kNone:
      case FaultKind::kStop:
      case FaultKind::kGoaway:
        return Answer();
      case FaultKind::kStatus:
        return End({{static_cast<grpc::StatusCode>(fault.status), fault.message}, "", false});
      case FaultKind::kReject:
        // An absent field `success` is false.
        return method != nullptr && method->replies_success ? Reply("") : Answer();
      case FaultKind::kIgnore:
        return method != nullptr && method->replies_success
                   ? Reply(wire_schema::Encode(*method->reply, {{"success", true}}))
                   : Answer();
      case FaultKind::kEmpty:
        return Reply("");
      case FaultKind::kMalformed:
        return Reply(kMalformed);
      case FaultKind::kOversize:
        return Reply(std::string(kOversize, '\0'));
      case FaultKind::kFreeze:
        return Freeze();
      case FaultKind::kDrop:
        return Drop();
    }
  }

  // False for a cancelled call, which nothing else would end.
  bool ActLater() {
    const std::lock_guard<std::mutex> lock(dispatcher.mutex);
    if (is_cancelled) return false;
    late.Set(std::chrono::system_clock::now() + std::chrono::milliseconds(fault.delay_ms),
             [this](bool elapsed) { elapsed ? Act() : Finish(grpc::Status::CANCELLED); });
    is_late = true;
    return true;
  }

  void Freeze() {
    bool ends = false;
    {
      const std::lock_guard<std::mutex> lock(dispatcher.mutex);
      ends = is_cancelled;
      is_held = dispatcher.frozen.count(this) != 0;
      if (is_held) return;
    }
    ends ? Finish(grpc::Status::CANCELLED) : Answer();
  }

  std::string FaultText() const { return fault.method.empty() ? "" : ToString(fault); }

  void Reply(const std::string& answer) { End({grpc::Status::OK, answer, false}); }

  void Drop() { End({grpc::Status::CANCELLED, "", true}); }

  void End(Outcome outcome) noexcept {
    if (!fault.answer.empty() && !outcome.is_dropped) {
      outcome.reply = Edited(*method->reply, outcome.reply, fault.answer);
      outcome.status = grpc::Status::OK;
    }
    if (Backend* const backend = dispatcher.device.backend.get())
      backend->Ended(query, FaultText(), outcome);
    if (outcome.is_dropped) DropConnectionOf(peer);
    if (!outcome.status.ok()) return Finish(outcome.status);
    reply = wire_schema::ToByteBuffer(outcome.reply);
    StartWriteAndFinish(&reply, {}, grpc::Status::OK);
  }

  Dispatcher& dispatcher;
  const Method* const method;
  const std::string peer;
  Query query;
  grpc::ByteBuffer request;
  grpc::ByteBuffer reply;
  Fault fault;
  bool is_cancelled = false;
  bool is_held = false;  // nothing is left to do but to wait for a thaw
  bool is_late = false;  // `late` is set
  grpc::Alarm late;
  const std::shared_ptr<Held> held = std::make_shared<Held>();
};

Dispatcher::~Dispatcher() {
  // No call is left. ThreadSanitizer, which does not see inside gRPC, learns it from
  // the mutex that each of them has held.
  const std::lock_guard<std::mutex> lock(mutex);
}

grpc::ServerGenericBidiReactor* Dispatcher::CreateReactor(
    grpc::GenericCallbackServerContext* context) {
  return new Call(*this, *context);
}

void Dispatcher::Thaw(const std::string& pattern) {
  std::vector<Call*> held;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto call = frozen.begin(); call != frozen.end();) {
      const bool thaws = (*call)->IsFrozenBy(pattern);
      if (thaws && (*call)->IsHeld()) held.push_back(*call);
      call = thaws ? frozen.erase(call) : std::next(call);
    }
  }
  for (Call* call : held) call->Answer();
}

}  // namespace simulator
