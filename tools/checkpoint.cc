#include "tools/checkpoint.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <ctime>
#include <iostream>
#include <limits>
#include <utility>

#include "terminal/prompt.h"
#include "tools/call_options.h"
#include "tools/failure.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/rescuer.h"
#include "tools/snapshot.h"

namespace tool {
namespace {

constexpr const char* kRestored = "what was before is restored";

std::string Whole(double seconds) { return std::to_string(std::lround(std::ceil(seconds))); }

[[noreturn]] void RefuseSecond(const CheckpointFile& file) {
  const Json first = file.Read();
  throw Failure(ExitStatus::kFailed,
                "a checkpoint is open for this device, of '" + first["command"].get<std::string>() +
                    "' since " + first["created"].get<std::string>() +
                    "; see 'networkgrpc checkpoint', 'confirm' and 'rollback'");
}

std::string ConfirmedFromElsewhere() {
  std::cerr << "confirmed from elsewhere\n";
  return "";
}

}  // namespace

Checkpoint::Checkpoint(Daemon of, std::string of_command, double limit)
    : file(CheckpointFile::OfThisDevice()),
      daemon(of),
      command(std::move(of_command)),
      seconds(limit) {}

Checkpoint::~Checkpoint() {
  if (lock >= 0) close(lock);
}

void Checkpoint::Prepare() {
  if (!snapshot.is_null()) return;
  if (file.Exists()) RefuseSecond(file);
  snapshot = TakeSnapshot(daemon);
}

void Checkpoint::Announce() {
  Prepare();
  for (const std::string& line : NotRestoredExactly(snapshot))
    std::cerr << terminal::Printable(line) + "\n";
}

void Checkpoint::Begin() { Begin(0); }

void Checkpoint::BeginForThisProcess() { Begin(getpid()); }

void Checkpoint::Begin(pid_t process) {
  if (HasBegun()) return;
  Prepare();
  deadline = SecondsSinceBoot() + seconds;
  const int locked = file.Create({{"schema", 1},
                                  {"network_manager", Endpoint(Daemon::kNetworkManager)},
                                  {"dapi", Endpoint(Daemon::kDante)},
                                  {"command", command},
                                  {"created", UtcTime(std::time(nullptr))},
                                  {"deadline", deadline},
                                  {"process", process},
                                  {"snapshot", snapshot}});
  try {
    witness.emplace(file);
    StartRescuer(file, locked);
  } catch (const Failure&) {
    Discard(Witness(locked));
    throw;
  }
  close(locked);
  LimitCalls(seconds);
}

void Checkpoint::Discard() const { Discard(*witness); }

void Checkpoint::Discard(const Witness& created) const {
  try {
    file.Confirm(created);
  } catch (const Failure& failure) {  // why there is nothing to confirm matters more
    std::cerr << ErrorLine(failure.message);
  }
}

double Checkpoint::SecondsLeft() const { return std::max(deadline - SecondsSinceBoot(), 0.0); }

// Whether the question is still open. If the rescuer was killed, this process does its work.
bool Checkpoint::Waits() {
  if (lock < 0) lock = file.Lock();
  return IsOpen() && SecondsLeft() > 0 && interrupt::Signal() == 0;
}

bool Checkpoint::IsConfirmed() const { return witness->SawRemoval() && !witness->SawRestoration(); }

bool Checkpoint::IsOpen() const { return file.IsOpen(*witness); }

bool Checkpoint::MayBeKept() const { return IsConfirmed() || (IsOpen() && SecondsLeft() > 0); }

std::string Checkpoint::Settle() {
  if (IsConfirmed()) return ConfirmedFromElsewhere();
  if (!IsOpen()) {  // which of the two the device did last is not known
    const std::string why = SecondsLeft() > 0 ? "rolled back meanwhile: " : "not confirmed: ";
    Restore();
    Failure failure(ExitStatus::kFailed,
                    why + kRestored + ", but perhaps not what was changed at the same time; see " +
                        "'networkgrpc status'");
    failure.outcome = Outcome::kUnknown;
    throw failure;
  }
  const std::string how = "undone in " + Whole(SecondsLeft()) + " s unless confirmed";
  if (!terminal::HasPerson()) {
    std::cerr << "networkgrpc: the change is " + how + ": networkgrpc confirm\n";
    return UtcTime(std::time(nullptr) + std::lround(SecondsLeft()));
  }
  const interrupt::Handler handler;
  const auto answer =
      terminal::Ask("The change is " + how + ". Keep it?", [this] { return Waits(); });
  if (answer == terminal::Answer::kYes && file.Confirm(*witness)) return "";
  if (answer != terminal::Answer::kYes) std::cerr << '\n';
  const bool by_another = SecondsLeft() > 0 && !IsOpen();
  const char* const why = answer == terminal::Answer::kYes ? "too late: "
                          : by_another                     ? "rolled back: "
                                                           : "not confirmed: ";
  if (IsConfirmed()) return ConfirmedFromElsewhere();
  const bool is_left = answer == terminal::Answer::kNone && SecondsLeft() > 0 && IsOpen();
  if (is_left && interrupt::Signal() != SIGINT && interrupt::Signal() != SIGTERM) {
    // The terminal is lost. Who has it may confirm from another one.
    std::cerr << "networkgrpc: the change is " + how + ": networkgrpc confirm\n";
    return UtcTime(std::time(nullptr) + std::lround(SecondsLeft()));
  }
  RestoreAndThrow(why);
}

void Checkpoint::RestoreAndThrow(const std::string& why) {
  Restore();
  throw Failure(ExitStatus::kFailed, why + kRestored);
}

void Checkpoint::RestoreAfter(Failure& failure) {
  try {
    Restore();
    failure.message += std::string("; ") + kRestored;
    failure.result = nullptr;
  } catch (const Failure& other) {
    failure.message += "; " + other.message;
    if (other.outcome != Outcome::kPartly) return;
    failure.outcome = Outcome::kPartly;
    failure.result = nullptr;
  }
}

void Checkpoint::Restore() { RestoreNow(file, *witness, std::exchange(lock, -1)); }

void RestoreNow(const CheckpointFile& file, const Witness& witness, int lock) {
  file.BeginRestoring(witness);
  file.Touch();
  LimitCalls(std::numeric_limits<double>::infinity());
  std::string last;
  const auto report = [&last](const std::string& problem) {
    if (problem.empty() || problem == last) return;
    std::cerr << ErrorLine("cannot restore yet: " + problem + "; trying again");
    last = problem;
  };
  while (lock < 0 && !witness.SawRemoval() && (lock = file.Lock()) < 0) {
    report(file.Progress()["problem"].get<std::string>());
    constexpr int kPauseMs = 50;  // the end of the process that has the lock is no event
    poll(nullptr, 0, kPauseMs);
  }
  if (witness.SawRemoval()) {  // the process that had the lock has decided
    if (lock >= 0) close(lock);
    if (witness.SawRestoration()) return;
    throw Failure(ExitStatus::kFailed, "confirmed meanwhile: the change is kept");
  }
  const bool is_restored =
      RestoreUntilDone(file, [&](const std::string& problem, double) { report(problem); });
  close(lock);
  if (is_restored) return;
  Failure failure(ExitStatus::kFailed, "not everything could be restored: " + last +
                                           "; 'networkgrpc rollback' tries again, 'networkgrpc "
                                           "confirm' leaves it as it is");
  failure.outcome = Outcome::kPartly;
  throw failure;
}

std::vector<std::string> AbandonedCheckpoints() {
  std::vector<std::string> lines;
  for (const CheckpointFile& file : CheckpointFile::All()) {
    if (file.IsAttended() || !file.Exists()) continue;
    std::string of;
    try {
      of = " of '" + file.Read()["command"].get<std::string>() + "'";
    } catch (const std::exception&) {  // damaged: it can still be removed
    }
    lines.push_back("an abandoned checkpoint" + of + " is left: 'networkgrpc rollback' restores " +
                    "what was before, 'networkgrpc confirm' keeps what is now; see 'networkgrpc "
                    "checkpoint'");
  }
  return lines;
}

}  // namespace tool
