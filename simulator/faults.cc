#include "simulator/faults.h"

#include <algorithm>
#include <utility>

namespace simulator {
namespace {

// Enough for a long test; a device that is polled for days must not grow.
constexpr std::size_t kMostCalls = 10000;

bool IsCallOf(const ReceivedCall& call, const std::string& pattern) {
  const std::size_t dot = call.method.find('.');
  const std::string service = call.method.substr(0, dot);
  return Matches(pattern, service == Name(Daemon::kDapi) ? Daemon::kDapi : Daemon::kNetworkManager,
                 call.method.substr(dot + 1));
}

bool Stops(const Fault& fault, Daemon daemon) {
  return fault.kind == FaultKind::kStop && StoppedDaemon(fault) == daemon;
}

}  // namespace

void Faults::Add(const Fault& fault) {
  const std::lock_guard<std::mutex> lock(mutex);
  faults.push_back(fault);
}

void Faults::Clear(const std::string& method) {
  const std::lock_guard<std::mutex> lock(mutex);
  faults.erase(
      std::remove_if(faults.begin(), faults.end(),
                     [&](const Fault& fault) { return method.empty() || fault.method == method; }),
      faults.end());
}

std::vector<Fault> Faults::List() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return faults;
}

bool Faults::HasStop(Daemon daemon) const {
  const std::lock_guard<std::mutex> lock(mutex);
  return std::any_of(faults.begin(), faults.end(),
                     [&](const Fault& fault) { return Stops(fault, daemon); });
}

void Faults::ClearStop(Daemon daemon) {
  const std::lock_guard<std::mutex> lock(mutex);
  faults.erase(std::remove_if(faults.begin(), faults.end(),
                              [&](const Fault& fault) { return Stops(fault, daemon); }),
               faults.end());
}

std::optional<Fault> Faults::Take(Daemon daemon, const std::string& method) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
    return fault.kind != FaultKind::kStop && Matches(fault.method, daemon, method);
  });
  if (found == faults.end()) return std::nullopt;
  const Fault taken = *found;
  if (found->times == 1) {
    faults.erase(found);
  } else if (found->times != 0) {
    --found->times;
  }
  return taken;
}

void Faults::Record(ReceivedCall call) {
  const std::lock_guard<std::mutex> lock(mutex);
  call.number = ++received;
  calls.push_back(std::move(call));
  if (calls.size() > kMostCalls) calls.pop_front();
  recorded.notify_all();
}

std::vector<ReceivedCall> Faults::Calls() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return {calls.begin(), calls.end()};
}

void Faults::ForgetCalls() {
  const std::lock_guard<std::mutex> lock(mutex);
  calls.clear();
}

bool Faults::WaitForCalls(const std::string& method, std::size_t count,
                          std::chrono::milliseconds limit) {
  std::unique_lock<std::mutex> lock(mutex);
  return recorded.wait_for(lock, limit, [&] {
    return static_cast<std::size_t>(std::count_if(
               calls.begin(), calls.end(),
               [&](const ReceivedCall& call) { return IsCallOf(call, method); })) >= count;
  });
}

}  // namespace simulator
