// networkgrpc checkpoint, confirm, rollback.
#include <poll.h>
#include <sys/wait.h>

#include <cmath>
#include <csignal>
#include <fstream>
#include <iterator>
#include <memory>

#include "terminal/joined.h"
#include "terminal/table.h"
#include "tools/checkpoint.h"
#include "tools/commands.h"
#include "tools/interrupt.h"
#include "tools/spawn.h"

namespace tool {
namespace {

using Words = std::vector<std::string>;

Json Entry(const CheckpointFile& file) {
  const Json content = file.Read();
  const bool is_attended = file.IsAttended();
  const double left = content["deadline"].get<double>() - SecondsSinceBoot();
  const bool is_open = is_attended && file.IsOpen();
  return {{"state", is_open       ? "open"
                    : is_attended ? "restoring"
                                  : "abandoned"},
          {"command", content["command"]},
          {"created", content["created"]},
          {"seconds_left", is_open ? Json(std::lround(std::max(left, 0.0))) : Json()},
          {"network_manager", content["network_manager"]},
          {"dapi", content["dapi"]},
          {"problem", file.Progress()["problem"]}};
}

Json ListCheckpoints() {
  Json list = Json::array();
  for (const CheckpointFile& file : CheckpointFile::All()) {
    try {
      list.push_back(Entry(file));
    } catch (const Failure& failure) {
      if (failure.status != ExitStatus::kNotFound) throw;  // it has ended meanwhile
    }
  }
  return {{"checkpoints", list}};
}

std::string ShowCheckpoints(const Json& result) {
  if (result["checkpoints"].empty()) return "no checkpoint is open\n";
  terminal::Table table(
      {"STATE", "LEFT", "SINCE", "COMMAND", "NETWORK-MANAGER", "DAPI", "PROBLEM"});
  for (const Json& it : result["checkpoints"])
    table.Add({it["state"], it["seconds_left"].is_null() ? "" : Text(it["seconds_left"]) + " s",
               it["created"], it["command"], it["network_manager"], it["dapi"], it["problem"]});
  return table.Text();
}

// What it has started as well: a shell would leave that behind, to go on with the change. If the
// kernel does not list it, the process alone.
void HangUp(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream list("/proc/" + id + "/task/" + id + "/children");
  const std::vector<pid_t> children(std::istream_iterator<pid_t>(list), {});
  kill(process, SIGHUP);
  for (const pid_t child : children) HangUp(child);
}

// Its wait status. At the deadline, or when the change is rolled back before, it is hung up, and
// not waited for: it must not hold up what is restored. Once the change is confirmed, it has as
// long as it needs.
std::optional<int> WaitFor(pid_t child, const Checkpoint& checkpoint) {
  const interrupt::Handler handler;  // Ctrl-C is for the command
  constexpr int kPauseMs = 20;
  int status = 0;
  while (waitpid(child, &status, WNOHANG) != child) {
    if (!checkpoint.MayBeKept()) {
      HangUp(child);
      return std::nullopt;
    }
    poll(nullptr, 0, kPauseMs);
  }
  return status;
}

// Why the change is not to be kept; empty if it may be.
std::string Problem(const Words& words, const std::optional<int>& status, bool is_in_time) {
  const std::string command = "'" + words.front() + "'";
  if (!status)
    return command + " was still running " +
           (is_in_time ? "when it was rolled back" : "at the end of the time");
  if (WIFSIGNALED(*status))
    return command + " was ended by signal " + std::to_string(WTERMSIG(*status));
  if (WEXITSTATUS(*status) == 0) return "";
  return command + " ended with status " + std::to_string(WEXITSTATUS(*status));
}

Json RunUnderCheckpoint(Tool& tool, const Words& words, double seconds) {
  if (seconds == 0) throw Failure(ExitStatus::kUsage, "--timeout is required before a command");
  Checkpoint checkpoint(Daemon::kNone, terminal::Joined(words, " "), seconds);
  checkpoint.Announce();
  checkpoint.Begin();
  pid_t child = 0;
  try {
    child = Spawn({words.front(), {}}, words);
  } catch (const Failure&) {
    checkpoint.Discard();
    throw;
  }
  const std::optional<int> status = WaitFor(child, checkpoint);
  const std::string problem = Problem(words, status, checkpoint.SecondsLeft() > 0);
  if (problem.empty()) {
    tool.confirm_by = checkpoint.Settle();
    return {{"command", terminal::Joined(words, " ")}};
  }
  Failure failure(ExitStatus::kFailed, problem);
  checkpoint.RestoreAfter(failure);
  throw failure;
}

Json Confirm() {
  const CheckpointFile file = CheckpointFile::OfThisDevice();
  const Witness witness(file);
  const std::string command = file.Read()["command"];
  const int lock = file.Lock();
  if (lock >= 0) {  // it was abandoned
    file.RemoveUnwanted();
    close(lock);
  } else if (!file.Confirm(witness)) {
    throw Failure(ExitStatus::kFailed, "too late: '" + command + "' is being undone");
  }
  return {{"command", command}};
}

Json Rollback() {
  const CheckpointFile file = CheckpointFile::OfThisDevice();
  const Witness witness(file);
  const std::string command = file.Read()["command"];
  RestoreNow(file, witness);
  return {{"command", command}};
}

ToText Says(const std::string& what) {
  return [what](const Json& result) { return "'" + Text(result["command"]) + "' " + what + "\n"; };
}

}  // namespace

void AddCheckpoint(Tool& tool) {
  struct Arguments {
    Words command;
    double timeout = 0;
  };
  const auto arguments = std::make_shared<Arguments>();
  Command checkpoint =
      tool.AddVerb(tool.Top(), "checkpoint",
                   {"Undo what a command changes unless it is confirmed",
                    [&tool, arguments] {
                      return arguments->command.empty()
                                 ? ListCheckpoints()
                                 : RunUnderCheckpoint(tool, arguments->command, arguments->timeout);
                    },
                    [](const Json& result) {
                      return result.contains("checkpoints") ? ShowCheckpoints(result) : "";
                    },
                    {"networkgrpc checkpoint"}});
  checkpoint.OptionalArgument(
      "COMMAND", &arguments->command,
      "Behind --, with its arguments; without it, list the checkpoints that are open");
  checkpoint.Seconds("--timeout", &arguments->timeout, 1,
                     "Time to confirm, from the start of the command");
  tool.AddVerb(tool.Top(), "confirm",
               {"Keep the change of the checkpoint that is open",
                Confirm,
                Says("is confirmed"),
                {"networkgrpc hostname hall --confirm-within 60 && networkgrpc confirm"}});
  tool.AddVerb(tool.Top(), "rollback",
               {"Undo the change of the checkpoint that is open",
                Rollback,
                Says("is undone"),
                {"networkgrpc hostname hall --confirm-within 60 && networkgrpc rollback"}});
}

}  // namespace tool
