// Faults of the link between the library and the daemons: all functions at the same time,
// each in its own process with its own daemons and relays in front of them.
#include <cstdlib>
#include <string>

#include "client/environment.h"
#include "support/device.h"
#include "tests/faults/fault_matrix.h"
#include "tests/faults/function_under_test.h"
#include "tests/faults/parallel_processes.h"
#include "tests/faults/relay.h"

namespace faults {
namespace {

using support::Function;
using support::Outcome;

// Answers every call of a function, through relays. The environment points at these.
class LinkedDevice {
 public:
  LinkedDevice(const Function& function, const LinkSpeed& speed)
      : network_manager(device.network_manager->Url(), speed), dapi(device.dapi->Url(), speed) {
    setenv(client::kNetworkManagerUrl.variable, network_manager.Url().c_str(), 1);
    setenv(client::kDapiUrl.variable, dapi.Url().c_str(), 1);
    device.BuildClients();
    support::ScriptAlways(device, {function});
  }

  void CutAfter(Direction direction, std::size_t bytes) {
    network_manager.CutAfter(direction, bytes);
    dapi.CutAfter(direction, bytes);
  }

  // Withdraws the cuts that have not happened. Returns whether one has.
  bool WithdrawCut() {
    const bool network_manager_has = network_manager.WithdrawCut();
    return dapi.WithdrawCut() || network_manager_has;
  }

  support::Device device;

 private:
  Relay network_manager;
  Relay dapi;
};

// Every call succeeds, and the daemon receives the same bytes as ever.
MatrixRow Slow(const std::string& name, const LinkSpeed& speed) {
  const auto work = [speed](const Function& function, ResultCounts& counts) {
    LinkedDevice linked(function, speed);
    for (const char* const call : {"", " again"}) {
      Outcome seen = TimedCall(function, counts);
      seen.requests = linked.device.TakeRequests();
      for (support::Request& request : seen.requests) request.besides.clear();
      counts.Count(function.name + call, seen, support::Expected(function, {}));
    }
  };
  return {name, [work] { return RunForEveryFunction(work); }};
}

// Cuts the link ever later, until the function's calls end before the cut. The call that is
// cut fails, those before it have succeeded, and the next call of the function works.
void CutEverLater(const Function& function, Direction direction, ResultCounts& counts) {
  constexpr std::size_t kStep = 3;       // bytes
  constexpr std::size_t kShortest = 30;  // bytes, of the request or the reply of a call
  constexpr int kMostEarly = 20;
  LinkedDevice linked(function, {});
  WaitUntilItWorks(function, counts);
  int early = 0;
  for (std::size_t bytes = 0;;) {
    linked.CutAfter(direction, bytes);
    const Outcome seen = TimedCall(function, counts);
    const bool was_cut = linked.WithdrawCut();
    const bool is_good = seen == GoodOutcome(function);
    const std::string what = function.name + " cut after " + std::to_string(bytes) + " bytes";
    counts.Count(what, IsPossible(function, seen), "unexpected outcome");
    if (!was_cut) {
      counts.Count(what, is_good, "failed, but was not cut");
      counts.Count(what, bytes >= kShortest || function.steps.empty(), "was not cut");
      return;
    }
    WaitUntilItWorks(function, counts);
    // What belongs to the connection alone may meet the cut before or after the call.
    const bool was_early = is_good && bytes < kShortest;
    if (!was_early) bytes += kStep;
    if (was_early && ++early > kMostEarly) return counts.Count(what, false, "no call fails");
  }
}

MatrixRow Cut(const std::string& name, Direction direction) {
  return {name, [direction] {
            return RunForEveryFunction([&](const Function& function, ResultCounts& counts) {
              CutEverLater(function, direction, counts);
            });
          }};
}

}  // namespace

std::vector<MatrixRow> LinkFaults() {
  using std::chrono::microseconds;
  return {Slow("OneByteSlices", {1, microseconds(50)}),
          Slow("OneKiBPerSecond", {64, microseconds(62500)}),
          Cut("RequestIsCut", Direction::kRequests), Cut("ReplyIsCut", Direction::kReplies)};
}

}  // namespace faults
