#include "simulator/call_log.h"

#include <algorithm>
#include <utility>

#include "simulator/fault.h"

namespace simulator {
namespace {

// Enough for a long test; a device that is polled for days must not grow.
constexpr std::size_t kMostCalls = 10000;

}  // namespace

void CallLog::Record(ReceivedCall call) {
  const std::lock_guard<std::mutex> lock(mutex);
  call.number = ++received;
  calls.push_back(std::move(call));
  if (calls.size() > kMostCalls) calls.pop_front();
  recorded.notify_all();
}

std::vector<ReceivedCall> CallLog::Calls() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return {calls.begin(), calls.end()};
}

void CallLog::Clear() {
  const std::lock_guard<std::mutex> lock(mutex);
  calls.clear();
}

bool CallLog::WaitFor(const std::string& method, std::size_t count,
                      std::chrono::milliseconds limit) {
  std::unique_lock<std::mutex> lock(mutex);
  return recorded.wait_for(lock, limit, [&] {
    return static_cast<std::size_t>(std::count_if(
               calls.begin(), calls.end(),
               [&](const ReceivedCall& call) { return Matches(method, call.method); })) >= count;
  });
}

}  // namespace simulator
