#include "conformance/run.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <thread>

#include "tools/checkpoint.h"
#include "tools/failure.h"
#include "tools/interrupt.h"
#include "tools/snapshot.h"

namespace conformance {
namespace {

using Clock = std::chrono::steady_clock;
using tool::Daemon;
using tool::Failure;

// What the daemons had before the first change. Another process restores it if this one
// ends early.
class Before {
 public:
  /// Each restoration may take so many seconds.
  Before(std::vector<Daemon> of, double seconds) : daemons(std::move(of)), limit(seconds) {}

  /// Why settings of this daemon cannot be changed; "" if they can.
  std::string Obstacle(const Session& session, Daemon daemon) {
    if (!has_begun) Begin(session);
    return obstacle[daemon];
  }

  /// After each check that may have changed something.
  void Restore(Daemon daemon) {
    const std::string why = TryToRestore(daemon);
    if (why.empty()) return;
    problem = "what was before could not be restored in time: " + why;
    obstacle[daemon] = problem;
  }

  /// What went wrong with it; "" if nothing did. The other process continues if it has to.
  std::string Finish() {
    if (!checkpoint.has_value()) return "";
    if (tool::interrupt::Signal() != 0)  // no call can be made any more
      return "interrupted: another process restores what was before; see 'networkgrpc checkpoint'";
    for (const auto& [daemon, snapshot] : snapshots) {
      const std::string why = TryToRestore(daemon);
      if (!why.empty())
        return "not everything is restored yet: " + why +
               "; another process tries again: see 'networkgrpc checkpoint'";
    }
    checkpoint->Discard();
    return problem;
  }

 private:
  // What cannot be told apart cannot be restored.
  static std::string Ambiguity(const Session& session, Daemon daemon) {
    const std::vector<std::string> needed =
        daemon == Daemon::kDante
            ? std::vector<std::string>{"lists.TxChannels", "lists.RxChannels",
                                       "lists.Subscriptions"}
            : std::vector<std::string>{"lists.Interfaces", "lists.NetworkConfig",
                                       "lists.NetworkStatus"};
    for (const std::string& check : needed)
      if (session.failed.count(check) != 0) return "see " + check;
    return "";
  }

  // A daemon that has just applied something may need time. Why it failed; "" if it did not.
  std::string TryToRestore(Daemon daemon) {
    constexpr std::chrono::milliseconds kPause(100);
    const auto end = Clock::now() + std::chrono::duration<double>(limit);
    while (true) {
      try {
        tool::Restore(snapshots[daemon], must_reload, [] {});
        return "";
      } catch (const Failure& failure) {
        if (Clock::now() > end) return failure.message;
      }
      std::this_thread::sleep_for(kPause);
    }
  }

  void Begin(const Session& session) {
    has_begun = true;
    for (const Daemon daemon : daemons) {
      obstacle[daemon] = Ambiguity(session, daemon);
      if (!obstacle[daemon].empty()) continue;
      try {
        snapshots[daemon] = tool::TakeSnapshot(daemon);
      } catch (const Failure& failure) {
        obstacle[daemon] = "no checkpoint: " + failure.message;
      }
    }
    if (snapshots.empty()) return;
    const Daemon of = snapshots.size() > 1 ? Daemon::kNone : snapshots.begin()->first;
    try {
      checkpoint.emplace(of, "networkgrpc-conformance", kLongest);
      checkpoint->BeginForThisProcess();
    } catch (const Failure& failure) {
      checkpoint.reset();
      for (const auto& [daemon, snapshot] : snapshots)
        obstacle[daemon] = "no checkpoint: " + failure.message;
    }
  }

  static constexpr double kLongest = 24.0 * 60 * 60;  // seconds

  const std::vector<Daemon> daemons;
  const double limit;
  std::map<Daemon, std::string> obstacle;
  std::string problem;
  bool has_begun = false;
  bool must_reload = false;
  std::map<Daemon, Json> snapshots;
  std::optional<tool::Checkpoint> checkpoint;
};

// Why the check is not made, whatever the daemon does; "" if it is.
std::string Forbidden(const Check& check, const Session& session, const Permissions& permissions) {
  switch (check.effect) {
    case Effect::kReads:
      return "";
    case Effect::kRestarts:
      return session.limits.restart.empty() ? "needs --restart" : "";
    case Effect::kFactoryReset:
      if (!permissions.read_only && !permissions.factory_reset) return "needs --factory-reset";
      [[fallthrough]];
    case Effect::kChanges:
      return permissions.read_only ? "--read-only" : "";
  }
  return "";
}

void Make(const Check& check, Session& session, Result& result) {
  const auto end_with = [&](Outcome outcome, const std::string& why) {
    result.outcome = outcome;
    result.why = why;
  };
  try {
    check.run(session);
  } catch (const Failed& failed) {
    end_with(Outcome::kFailed, failed.problem);
  } catch (const Skipped& skipped) {
    end_with(Outcome::kSkipped, skipped.reason);
  } catch (const Failure& failure) {
    end_with(Outcome::kFailed, failure.message);
  } catch (const Json::exception& error) {
    end_with(Outcome::kFailed, std::string("unexpected reply: ") + error.what());
  }
}

// What is only read comes first, so that nothing is changed on a device that cannot be
// restored. What takes long, or interrupts a daemon, comes last.
int Turn(const Check& check) {
  if (check.effect == Effect::kRestarts) return 4;
  if (check.name == "answers.Reconnect") return 3;
  if (check.name.compare(0, 10, "keepalive.") == 0) return 2;
  return check.effect == Effect::kReads ? 0 : 1;
}

}  // namespace

Checks OfBoth(const Checks& checks) {
  Checks both;
  for (const Check& check : checks)
    for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDante}) {
      Check& added = both.emplace_back(check);
      added.name += daemon == Daemon::kDante ? ".Dante" : ".NetworkManager";
      added.daemon = daemon;
    }
  return both;
}

Checks AllChecks() {
  Checks all;
  for (const Checks& some : {Answers(), Lists(), Wire(), Settings(), Reload(), Connections()})
    all.insert(all.end(), some.begin(), some.end());
  std::stable_sort(all.begin(), all.end(),
                   [](const Check& one, const Check& other) { return Turn(one) < Turn(other); });
  return all;
}

std::size_t Run::Count(Outcome outcome) const {
  return static_cast<std::size_t>(
      std::count_if(results.begin(), results.end(),
                    [&](const Result& result) { return result.outcome == outcome; }));
}

Run RunChecks(const Checks& checks, Session& session, const Permissions& permissions,
              const std::function<void()>& step) {
  Run run;
  Before before(session.daemons, session.limits.timeout);
  try {
    for (const Check& check : checks) {
      step();
      Result result;
      result.check = &check;
      result.why = Forbidden(check, session, permissions);
      const bool changes =
          check.effect == Effect::kChanges || check.effect == Effect::kFactoryReset;
      if (result.why.empty() && changes) result.why = before.Obstacle(session, check.daemon);
      if (!result.why.empty()) {
        result.outcome = Outcome::kSkipped;
      } else {
        session.daemon = check.daemon;
        session.exchanges.clear();
        const auto start = Clock::now();
        Make(check, session, result);
        result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        result.exchanges = session.exchanges;
        if (result.outcome == Outcome::kFailed) session.failed.insert(check.name);
        if (changes) before.Restore(check.daemon);
      }
      run.results.push_back(std::move(result));
    }
  } catch (const Interrupted&) {
    run.is_interrupted = true;
  }
  run.not_restored = before.Finish();
  return run;
}

}  // namespace conformance
