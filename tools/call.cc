#include "tools/call.h"

#include <grpcpp/client_context.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <limits>
#include <mutex>
#include <optional>
#include <sstream>
#include <utility>

#include "client/channel.h"
#include "state_document/table.h"
#include "tools/interrupt.h"

namespace tool {
namespace {

using SystemClock = std::chrono::system_clock;

CallOptions chosen;
std::function<void()> before_first_change;
double total_end = std::numeric_limits<double>::infinity();

double Now() {
  return std::chrono::duration<double>(SystemClock::now().time_since_epoch()).count();
}

SystemClock::time_point At(double seconds) {
  return SystemClock::time_point(
      std::chrono::duration_cast<SystemClock::duration>(std::chrono::duration<double>(seconds)));
}

// Whether a daemon that answers with this status may have made the change. With each of
// the others it says that it did not begin.
bool MayBeDone(grpc::StatusCode code) {
  switch (code) {
    case grpc::StatusCode::CANCELLED:
    case grpc::StatusCode::UNKNOWN:
    case grpc::StatusCode::DEADLINE_EXCEEDED:
    case grpc::StatusCode::INTERNAL:
    case grpc::StatusCode::UNAVAILABLE:
    case grpc::StatusCode::DATA_LOSS:
      return true;
    default:
      return false;
  }
}

class Attempt {
 public:
  explicit Attempt(const Asked& what)
      : asked(what), where(The(what.daemon) + " at " + Endpoint(what.daemon)) {}

  void Run(const std::function<grpc::Status(grpc::ClientContext&)>& call) {
    if (Endpoint(asked.daemon).empty())
      throw NotDone(ExitStatus::kUnreachable,
                    "the endpoint of " + The(asked.daemon) + " is empty; see 'networkgrpc doctor'");
    if (asked.changes && before_first_change) std::exchange(before_first_change, nullptr)();
    const double start = Now();
    end = std::min(start + chosen.timeout, total_end);
    if (asked.changes) Connect();
    if (interrupt::Signal() != 0) throw NotDone(ExitStatus::kFailed, "interrupted");
    if (Now() >= end) throw NotDone(ExitStatus::kTimeLimit, TooLate());
    Perform(call);
    if (chosen.verbose) Report(Now() - start);
    if (status.ok()) return;
    Failure failure = Why();
    failure.grpc_status = CodeName();
    if (failure.status == ExitStatus::kErrorStatus) failure.daemon_message = status.error_message();
    throw failure;
  }

  Failure Rejected() const {
    return NotDone(ExitStatus::kRejected, where + " rejected " + asked.rpc);
  }

 private:
  grpc::Channel& Channel() const { return *ChannelTo(asked.daemon); }

  // Until there is a connection nothing can be changed. Returns when the channel is
  // connected, when it cannot be, and at the time limit.
  void Connect() {
    auto state = Channel().GetState(true);
    while (state == GRPC_CHANNEL_IDLE || state == GRPC_CHANNEL_CONNECTING) {
      if (!Channel().WaitForStateChange(state, At(end))) return;
      state = Channel().GetState(true);
    }
    was_connected = state == GRPC_CHANNEL_READY;
  }

  void Perform(const std::function<grpc::Status(grpc::ClientContext&)>& call) {
    // A signal must not end the process while nobody knows what the daemon does.
    std::optional<interrupt::Handler> handler;
    if (asked.changes) handler.emplace();
    grpc::ClientContext context;
    context.set_deadline(At(end));
    const interrupt::Call cancellable(context);
    status = call(context);
  }

  void Report(double seconds) const {
    std::ostringstream line;
    line.precision(1);
    line << std::fixed << asked.rpc << " of " << where << ": " << StatusText() << " after "
         << seconds * 1000 << " ms";
    std::cerr << terminal::Printable(line.str()) + "\n";
  }

  Failure Why() const {
    const auto code = status.error_code();
    if (code == grpc::StatusCode::DEADLINE_EXCEEDED && Now() >= end)
      return asked.changes ? Unknown(ExitStatus::kUnknown, TooLate())
                           : NotDone(ExitStatus::kTimeLimit, TooLate());
    if (code == grpc::StatusCode::CANCELLED && interrupt::Signal() != 0)
      return asked.changes
                 ? Unknown(ExitStatus::kUnknown, std::string(asked.rpc) + " was interrupted")
                 : NotDone(ExitStatus::kFailed, "interrupted");
    if (code == grpc::StatusCode::UNAVAILABLE && !IsConnected()) return Disconnected();
    const std::string answer = where + " answered " + asked.rpc + " with " + StatusText();
    return asked.changes && MayBeDone(code) ? Unknown(ExitStatus::kErrorStatus, answer)
                                            : NotDone(ExitStatus::kErrorStatus, answer);
  }

  // A daemon that answers with UNAVAILABLE keeps its connection.
  bool IsConnected() const {
    constexpr double kNoticed = 0.1;
    return Channel().GetState(false) == GRPC_CHANNEL_READY &&
           !Channel().WaitForStateChange(GRPC_CHANNEL_READY, At(Now() + kNoticed));
  }

  Failure Disconnected() const {
    if (asked.changes && was_connected)
      return Unknown(ExitStatus::kUnknown, "the connection to " + where + " was lost during " +
                                               asked.rpc + " (" + StatusText() + ")");
    return NotDone(ExitStatus::kUnreachable,
                   where + " cannot be reached (" + StatusText() + "); see 'networkgrpc doctor'");
  }

  std::string TooLate() const {
    return "no reply from " + where + " to " + asked.rpc + " within the time limit";
  }

  std::string CodeName() const {
    return Text(state_document::NameOf(state_document::kStatuses, status.error_code()));
  }

  std::string StatusText() const {
    const std::string message = status.error_message();
    return CodeName() + (message.empty() ? "" : ": " + message);
  }

  Failure Make(ExitStatus why, const std::string& message, Outcome outcome) const {
    Failure failure(why, message, asked.daemon);
    failure.rpc = asked.rpc;
    failure.outcome = outcome;
    return failure;
  }

  Failure NotDone(ExitStatus why, const std::string& reason) const {
    return Make(why, "cannot " + asked.action + ": " + reason, Outcome::kNotDone);
  }

  Failure Unknown(ExitStatus why, const std::string& reason) const {
    return Make(why, "outcome unknown: " + asked.action + ": " + reason + "; read the setting back",
                Outcome::kUnknown);
  }

  const Asked& asked;
  const std::string where;
  double end = 0;
  bool was_connected = false;
  grpc::Status status;
};

}  // namespace

void SetCallOptions(const CallOptions& options) {
  chosen = options;
  if (options.total_timeout > 0) total_end = Now() + options.total_timeout;
}

void LimitCalls(double seconds) { total_end = Now() + seconds; }

void BeforeFirstChange(std::function<void()> function) {
  before_first_change = std::move(function);
}

Pause::Pause() : began(Now()) {}

Pause::~Pause() { total_end += Now() - began; }

const std::shared_ptr<grpc::Channel>& ChannelTo(Daemon daemon) {
  static std::array<std::shared_ptr<grpc::Channel>, 2> channels;
  static std::mutex mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  auto& channel = channels.at(daemon == Daemon::kDante ? 1 : 0);
  if (channel == nullptr) channel = client::MakeChannel(EndpointSetting(daemon));
  return channel;
}

void Call(const Asked& asked, const std::function<grpc::Status(grpc::ClientContext&)>& call) {
  Attempt(asked).Run(call);
}

void ThrowRejected(const Asked& asked) { throw Attempt(asked).Rejected(); }

Failure NotFound(const Asked& asked, const Listing& listing) {
  Failure failure(
      ExitStatus::kNotFound,
      "cannot " + asked.action + ": not found; see 'networkgrpc " + listing.command + "'",
      asked.daemon);
  failure.rpc = asked.rpc;
  return failure;
}

}  // namespace tool
