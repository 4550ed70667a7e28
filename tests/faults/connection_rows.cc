// Faults of the connection: every function in a process of its own, all at the
// same time, each with a daemon of its own.
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "tests/faults/apart.h"
#include "tests/faults/bench.h"
#include "tests/faults/rogue.h"
#include "tests/faults/row.h"

namespace faults {
namespace {

using std::chrono::milliseconds;
using support::Function;
using support::Outcome;

Tally OnEveryFunction(const std::function<void(const Function&, Tally&)>& work) {
  const std::vector<Function> all = support::AllFunctions();
  std::vector<Job> jobs;
  for (const Function& function : all)
    jobs.push_back({function.name, [&function, &work](Tally& tally) { work(function, tally); }});
  return RunApart(jobs);
}

// One job per call to a daemon that some function makes, and one for each
// function that makes none.
Tally OnEveryStep(const std::function<void(const Function&, std::size_t, Tally&)>& work) {
  const std::vector<Function> all = support::AllFunctions();
  std::vector<Job> jobs;
  for (const Function& function : all)
    for (std::size_t k = 0; k < function.steps.size(); ++k)
      jobs.push_back(
          {function.name, [&function, &work, k](Tally& tally) { work(function, k, tally); }});
  return RunApart(jobs);
}

// What must come out when call k and all after it fail.
Outcome ExpectedFrom(const Function& function, std::size_t k) {
  std::set<std::size_t> failing;
  for (std::size_t i = k; i < function.steps.size(); ++i) failing.insert(i);
  Outcome expected = support::Expected(function, failing);
  expected.requests.clear();
  return expected;
}

// --- Absent, killed --------------------------------------------------------------

void AbsentAtFirstUse(const Function& function, Tally& tally) {
  Bench bench(function, Bench::Start::kWithoutDaemon);
  const Outcome expected = support::ExpectedWithoutRoles(function);

  tally.Count(function.name, TimedCall(function, tally), expected);
  tally.Count(function.name + " again", TimedCall(function, tally), expected);
  // No role is known for good, so these never ask as usual again.
  static const std::set<std::string> need_a_role = {"GetDanteInterfacesInfo",
                                                    "GetControlInterfacesInfo",
                                                    "cGetControlInterface",
                                                    "GetTarvoInterfaceName",
                                                    "SetDanteIP",
                                                    "SetControlIP"};
  if (need_a_role.count(function.name) != 0) return;
  bench.StartDaemon();
  bench.WaitUntilHealthy(tally);
}

// gRPC looks after an idle connection every five seconds only. Before it does so,
// the first call finds that the connection is gone; the second tries a new one.
void AbsentLater(const Function& function, Tally& tally) {
  Bench bench(function);
  bench.daemon->Kill();

  tally.Count(function.name, TimedCall(function, tally), ExpectedFrom(function, 0));
  tally.Count(function.name + " again", TimedCall(function, tally), ExpectedFrom(function, 0));
  bench.StartDaemon();
  bench.WaitUntilHealthy(tally);
}

void KilledDuringCall(const Function& function, std::size_t k, Tally& tally) {
  Bench bench(function);
  bench.daemon->Hang({function.steps[k].path, function.steps[k].request});
  Outcome seen;
  std::thread caller([&] { seen = TimedCall(function, tally); });
  const bool arrived = bench.daemon->WaitForRequests(k + 1);
  bench.daemon->Kill();
  caller.join();

  tally.Count(function.name + " call " + std::to_string(k), seen, ExpectedFrom(function, k));
  tally.Count(function.name + " was asked", arrived, "the call has not arrived");
  bench.StartDaemon();
  bench.WaitUntilHealthy(tally);
}

// --- Restarted -------------------------------------------------------------------

// Until gRPC has looked after the idle connection, the first call is lost; the
// next one works, or the one after it where calls follow one another at once.
void RestartedSoonWhileIdle(const Function& function, milliseconds outage, Tally& tally) {
  constexpr int kMostLost = 3;
  Bench bench(function);
  bench.daemon->Kill();
  LetPass(outage);
  bench.StartDaemon();

  Outcome seen = TimedCall(function, tally);
  for (int lost = 0; lost < kMostLost && bench.Explains(seen) && !(seen == Healthy(function));
       ++lost) {
    LetPass(milliseconds(20));
    seen = TimedCall(function, tally);
  }
  tally.Count(function.name, seen, Healthy(function));
}

// After a longer outage the first call works.
void RestartedWhileIdle(const Function& function, milliseconds outage, Tally& tally) {
  Bench bench(function);
  bench.daemon->Kill();
  LetPass(outage);
  bench.StartDaemon();

  tally.Count(function.name, TimedCall(function, tally), Healthy(function));
}

// Calls keep coming all the time, one after the other.
void RestartedWhileCalling(const Function& function, milliseconds outage, Tally& tally) {
  Bench bench(function);
  std::mutex mutex;
  bool stop = false;
  int strange = 0;
  Tally times;
  std::thread caller([&] {
    for (;;) {
      {
        const std::lock_guard<std::mutex> lock(mutex);
        if (stop) return;
      }
      strange += bench.Explains(TimedCall(function, times)) ? 0 : 1;
      LetPass(milliseconds(20));
    }
  });
  bench.daemon->WaitForRequests(function.steps.empty() ? 0 : 2);
  bench.daemon->Kill();
  LetPass(outage);
  bench.StartDaemon();
  {
    const std::lock_guard<std::mutex> lock(mutex);
    stop = true;
  }
  caller.join();
  tally.slowest_ms = times.slowest_ms;
  tally.Count(function.name, strange == 0, "calls during the outage came out strangely");
  bench.WaitUntilHealthy(tally);
}

Row Restarted(const std::string& name, milliseconds outage, bool full_only,
              void (*work)(const Function&, milliseconds, Tally&)) {
  return {name,
          [=] {
            return OnEveryFunction(
                [&](const Function& function, Tally& tally) { work(function, outage, tally); });
          },
          full_only};
}

// --- Frozen ----------------------------------------------------------------------

void FrozenBeforeCall(const Function& function, Tally& tally) {
  Bench bench(function);
  bench.daemon->Freeze();

  tally.Count(function.name, TimedCall(function, tally), ExpectedFrom(function, 0));
  bench.daemon->Thaw();
  bench.WaitUntilHealthy(tally);
}

void FrozenDuringCall(const Function& function, std::size_t k, Tally& tally) {
  Bench bench(function);
  bench.daemon->Hang({function.steps[k].path, function.steps[k].request});
  Outcome seen;
  std::thread caller([&] { seen = TimedCall(function, tally); });
  const bool arrived = bench.daemon->WaitForRequests(k + 1);
  bench.daemon->Freeze();
  caller.join();

  tally.Count(function.name + " call " + std::to_string(k), seen, ExpectedFrom(function, k));
  tally.Count(function.name + " was asked", arrived, "the call has not arrived");
  // The call that hung is no more; the daemon is told to answer the next.
  bench.daemon->Thaw();
  bench.daemon->Answer({function.steps[k].path, function.steps[k].request},
                       function.steps[k].reply);
  bench.WaitUntilHealthy(tally);
}

// --- Someone else on the port ------------------------------------------------------

// The first call finds the old connection gone; a later one, or a later part of
// it, meets the newcomer.
void Replaced(const Function& function, const Manners& manners, Tally& tally) {
  Bench bench(function);
  bench.daemon->Kill();
  {
    const Rogue rogue(bench.port.Number(), manners);
    int calls = 0;
    do {
      tally.Count(function.name, TimedCall(function, tally), ExpectedFrom(function, 0));
    } while (rogue.Accepted() == 0 && !function.steps.empty() && ++calls < 10);
    tally.Count(function.name + " met it", rogue.Accepted() > 0 || function.steps.empty(),
                "no connection came");
  }
  bench.StartDaemon();
  bench.WaitUntilHealthy(tally);
}

Row ReplacedBy(const Manners& manners) {
  return {manners.name,
          [manners] {
            return OnEveryFunction([&](const Function& function, Tally& tally) {
              Replaced(function, manners, tally);
            });
          },
          manners.rare};
}

}  // namespace

std::vector<Row> ConnectionRows() {
  const auto each = [](void (*work)(const Function&, Tally&)) {
    return [work] { return OnEveryFunction(work); };
  };
  const auto steps = [](void (*work)(const Function&, std::size_t, Tally&)) {
    return [work] { return OnEveryStep(work); };
  };
  std::vector<Row> rows = {
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
  for (const Manners& manners : AllManners()) rows.push_back(ReplacedBy(manners));
  return rows;
}

}  // namespace faults
