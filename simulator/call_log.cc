#include "simulator/call_log.h"

#include <algorithm>
#include <utility>

#include "simulator/fault.h"

namespace simulator {
namespace {

// Enough for a long test; a device that is polled for days must not grow, nor one
// that receives the longest requests that gRPC accepts.
constexpr std::size_t kMostCalls = 10000;
constexpr std::size_t kMostBytes = std::size_t{16} * 1024 * 1024;

std::size_t BytesOf(const ReceivedCall& call) {
  return sizeof call + call.method.size() + call.request.size() + call.fault.size();
}

}  // namespace

void CallLog::Record(ReceivedCall call) {
  const std::lock_guard<std::mutex> lock(mutex);
  call.number = ++received;
  bytes += BytesOf(call);
  calls.push_back(std::move(call));
  while (calls.size() > kMostCalls || (bytes > kMostBytes && calls.size() > 1)) {
    bytes -= BytesOf(calls.front());
    calls.pop_front();
  }
  recorded.notify_all();
}

std::vector<ReceivedCall> CallLog::Calls() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return {calls.begin(), calls.end()};
}

void CallLog::Clear() {
  const std::lock_guard<std::mutex> lock(mutex);
  calls.clear();
  bytes = 0;
}

bool CallLog::WaitFor(const std::string& method, std::size_t count,
                      std::chrono::milliseconds limit) {
  std::unique_lock<std::mutex> lock(mutex);
  return recorded.wait_for(lock, limit, [&] { return CountLocked(method) >= count; });
}

std::size_t CallLog::Count(const std::string& method) const {
  const std::lock_guard<std::mutex> lock(mutex);
  return CountLocked(method);
}

std::size_t CallLog::CountLocked(const std::string& method) const {
  return static_cast<std::size_t>(
      std::count_if(calls.begin(), calls.end(),
                    [&](const ReceivedCall& call) { return Matches(method, call.method); }));
}

}  // namespace simulator
