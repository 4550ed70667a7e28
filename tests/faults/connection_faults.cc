// Faults of the connection: all functions at the same time, each in its own process with
// its own daemon.
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "tests/faults/fault_matrix.h"
#include "tests/faults/faulty_peer.h"
#include "tests/faults/function_under_test.h"
#include "tests/faults/parallel_processes.h"

namespace faults {
namespace {

using std::chrono::milliseconds;
using support::Function;
using support::Outcome;

// One process for every call to a daemon that a function makes.
ResultCounts OnEveryStep(
    const std::function<void(const Function&, std::size_t, ResultCounts&)>& work) {
  const std::vector<Function> all = support::AllFunctions();
  std::vector<Job> jobs;
  for (const Function& function : all)
    for (std::size_t k = 0; k < function.steps.size(); ++k)
      jobs.push_back({function.name,
                      [&function, &work, k](ResultCounts& counts) { work(function, k, counts); }});
  return RunInParallelProcesses(jobs);
}

// The outcome if call `k` and all later ones fail.
Outcome ExpectedFrom(const Function& function, std::size_t k) {
  std::set<std::size_t> failing;
  for (std::size_t i = k; i < function.steps.size(); ++i) failing.insert(i);
  Outcome expected = support::Expected(function, failing);
  expected.requests.clear();
  return expected;
}

// --- Absent, killed --------------------------------------------------------------

void AbsentAtFirstUse(const Function& function, ResultCounts& counts) {
  FunctionUnderTest tested(function, FunctionUnderTest::Start::kWithoutDaemon);
  const Outcome expected = support::ExpectedWithoutRoles(function);

  counts.Count(function.name, TimedCall(function, counts), expected);
  counts.Count(function.name + " again", TimedCall(function, counts), expected);
  // Roles are looked up once per process, so these functions do not recover.
  static const std::set<std::string> need_a_role = {"GetDanteInterfacesInfo",
                                                    "GetControlInterfacesInfo",
                                                    "cGetControlInterface",
                                                    "GetTarvoInterfaceName",
                                                    "SetDanteIP",
                                                    "SetControlIP"};
  if (need_a_role.count(function.name) != 0) return;
  tested.StartDaemon();
  WaitUntilItWorks(tested.function, counts);
}

// gRPC checks an idle connection only every five seconds. Until then the first call
// finds the connection closed, and the second one tries to connect again.
void AbsentLater(const Function& function, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  tested.daemon->Kill();

  counts.Count(function.name, TimedCall(function, counts), ExpectedFrom(function, 0));
  counts.Count(function.name + " again", TimedCall(function, counts), ExpectedFrom(function, 0));
  tested.StartDaemon();
  WaitUntilItWorks(tested.function, counts);
}

// Call `k` is never answered. The fault occurs when its request has arrived.
void FaultDuringCall(FunctionUnderTest& tested, std::size_t k, void (ChildDaemon::*fault)(),
                     ResultCounts& counts) {
  const Function& function = tested.function;
  tested.daemon->Hang({function.steps[k].path, function.steps[k].request});
  Outcome seen;
  std::thread caller([&] { seen = TimedCall(function, counts); });
  const bool arrived = tested.daemon->WaitForRequests(k + 1);
  (*tested.daemon.*fault)();
  caller.join();

  counts.Count(function.name + " call " + std::to_string(k), seen, ExpectedFrom(function, k));
  counts.Count(function.name + " was called", arrived, "the request did not arrive");
}

void KilledDuringCall(const Function& function, std::size_t k, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  FaultDuringCall(tested, k, &ChildDaemon::Kill, counts);
  tested.StartDaemon();
  WaitUntilItWorks(tested.function, counts);
}

// --- Restarted -------------------------------------------------------------------

// Until gRPC has checked the idle connection the first call fails. The second call
// succeeds, or a later one if the calls follow each other without a pause.
void RestartedSoonWhileIdle(const Function& function, milliseconds outage, ResultCounts& counts) {
  constexpr int kMostLost = 3;
  FunctionUnderTest tested(function);
  tested.daemon->Kill();
  Pause(outage);
  tested.StartDaemon();

  Outcome seen = TimedCall(function, counts);
  for (int lost = 0;
       lost < kMostLost && IsPossible(function, seen) && !(seen == GoodOutcome(function)); ++lost) {
    Pause(milliseconds(20));
    seen = TimedCall(function, counts);
  }
  counts.Count(function.name, seen, GoodOutcome(function));
}

// After a longer outage the first call succeeds.
void RestartedWhileIdle(const Function& function, milliseconds outage, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  tested.daemon->Kill();
  Pause(outage);
  tested.StartDaemon();

  counts.Count(function.name, TimedCall(function, counts), GoodOutcome(function));
}

// Calls follow one another during the outage.
void RestartedWhileCalling(const Function& function, milliseconds outage, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  std::mutex mutex;
  bool stop = false;
  int unexpected = 0;
  ResultCounts times;
  std::thread caller([&] {
    for (;;) {
      {
        const std::lock_guard<std::mutex> lock(mutex);
        if (stop) return;
      }
      unexpected += IsPossible(function, TimedCall(function, times)) ? 0 : 1;
      Pause(milliseconds(20));
    }
  });
  tested.daemon->WaitForRequests(function.steps.empty() ? 0 : 2);
  tested.daemon->Kill();
  Pause(outage);
  tested.StartDaemon();
  {
    const std::lock_guard<std::mutex> lock(mutex);
    stop = true;
  }
  caller.join();
  counts.slowest_ms = times.slowest_ms;
  counts.Count(function.name, unexpected == 0, "unexpected outcomes during the outage");
  WaitUntilItWorks(tested.function, counts);
}

MatrixRow Restarted(const std::string& name, milliseconds outage, bool full_only,
                    void (*work)(const Function&, milliseconds, ResultCounts&)) {
  return {name,
          [=] {
            return RunForEveryFunction([&](const Function& function, ResultCounts& counts) {
              work(function, outage, counts);
            });
          },
          full_only};
}

// --- Frozen ----------------------------------------------------------------------

void FrozenBeforeCall(const Function& function, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  tested.daemon->Freeze();

  counts.Count(function.name, TimedCall(function, counts), ExpectedFrom(function, 0));
  tested.daemon->Thaw();
  WaitUntilItWorks(tested.function, counts);
}

void FrozenDuringCall(const Function& function, std::size_t k, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  FaultDuringCall(tested, k, &ChildDaemon::Freeze, counts);
  tested.daemon->Thaw();
  const support::Step& step = function.steps[k];
  tested.daemon->Answer({step.path, step.request}, step.reply);
  WaitUntilItWorks(tested.function, counts);
}

// --- Replaced by another process ---------------------------------------------------

// The first call finds the old connection closed; it or a later call connects to the
// faulty peer.
void Replaced(const Function& function, const PeerBehaviour& behaviour, ResultCounts& counts) {
  FunctionUnderTest tested(function);
  tested.daemon->Kill();
  {
    const FaultyPeer peer(tested.port.Number(), behaviour);
    int calls = 0;
    do {
      counts.Count(function.name, TimedCall(function, counts), ExpectedFrom(function, 0));
    } while (peer.Accepted() == 0 && !function.steps.empty() && ++calls < 10);
    counts.Count(function.name + " connected to it", peer.Accepted() > 0 || function.steps.empty(),
                 "no connection was made");
  }
  tested.StartDaemon();
  WaitUntilItWorks(tested.function, counts);
}

MatrixRow ReplacedBy(const PeerBehaviour& behaviour) {
  return {behaviour.name,
          [behaviour] {
            return RunForEveryFunction([&](const Function& function, ResultCounts& counts) {
              Replaced(function, behaviour, counts);
            });
          },
          behaviour.full_only};
}

}  // namespace

std::vector<MatrixRow> ConnectionFaults() {
  const auto each = [](void (*work)(const Function&, ResultCounts&)) {
    return [work] { return RunForEveryFunction(work); };
  };
  const auto steps = [](void (*work)(const Function&, std::size_t, ResultCounts&)) {
    return [work] { return OnEveryStep(work); };
  };
  std::vector<MatrixRow> rows = {
      {"AbsentAtFirstUse", each(AbsentAtFirstUse)},
      {"AbsentLater", each(AbsentLater)},
      {"KilledDuringCall", steps(KilledDuringCall)},
      Restarted("RestartedIn100MsWhileIdle", milliseconds(100), false, RestartedSoonWhileIdle),
      Restarted("RestartedIn1SWhileIdle", milliseconds(1000), false, RestartedSoonWhileIdle),
      Restarted("RestartedIn10SWhileIdle", milliseconds(10000), false, RestartedWhileIdle),
      Restarted("RestartedIn100MsWhileCalling", milliseconds(100), false, RestartedWhileCalling),
      Restarted("RestartedIn1SWhileCalling", milliseconds(1000), false, RestartedWhileCalling),
      Restarted("RestartedIn10SWhileCalling", milliseconds(10000), true, RestartedWhileCalling),
      {"FrozenBeforeCall", each(FrozenBeforeCall)},
      {"FrozenDuringCall", steps(FrozenDuringCall)},
  };
  for (const PeerBehaviour& behaviour : AllPeerBehaviours()) rows.push_back(ReplacedBy(behaviour));
  return rows;
}

}  // namespace faults
