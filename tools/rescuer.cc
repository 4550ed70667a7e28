#include "tools/rescuer.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

#include "tools/failure.h"
#include "tools/snapshot.h"
#include "tools/spawn.h"

namespace tool {
namespace {

constexpr double kLongestPause = 60;  // seconds
constexpr int kMostAnswers = 10;      // attempts that daemons answer and do not carry out

// Wakes when the file at a path is renamed, removed or touched, and when a process ends.
class FileWatch {
 public:
  explicit FileWatch(const std::string& file, pid_t watched = 0)
      : inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
        process(watched != 0 ? static_cast<int>(syscall(SYS_pidfd_open, watched, 0)) : -1) {
    inotify_add_watch(inotify, file.c_str(), IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF);
  }
  ~FileWatch() {
    close(inotify);
    if (process >= 0) close(process);
  }

  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  void Wait(double seconds) const {
    std::array<pollfd, 2> inputs{{{inotify, POLLIN, 0}, {process, POLLIN, 0}}};
    poll(inputs.data(), inputs.size(), static_cast<int>(seconds * 1000) + 1);
    std::array<char, 4096> events{};
    while (read(inotify, events.data(), events.size()) > 0) {
    }
  }

  bool HasEnded() const {
    pollfd input{process, POLLIN, 0};
    return process >= 0 && poll(&input, 1, 0) > 0;
  }

 private:
  const int inotify;
  const int process;  // -1: none
};

// Returns at the deadline, as soon as the checkpoint is no longer open, and at the end of the
// process, if that is not 0.
void WaitForDeadline(const CheckpointFile& file, const Witness& witness, double deadline,
                     pid_t process) {
  constexpr double kLongest = 5;  // poll does not count the time in which the machine sleeps
  const FileWatch watch(file.Stem() + ".open", process);
  while (file.IsOpen(witness) && SecondsSinceBoot() < deadline && !watch.HasEnded())
    watch.Wait(std::min(deadline - SecondsSinceBoot(), kLongest));
}

bool IsAnswer(const Failure& failure) {
  return failure.status == ExitStatus::kRejected || failure.status == ExitStatus::kErrorStatus ||
         failure.status == ExitStatus::kNotFound;
}

}  // namespace

void StartRescuer(const CheckpointFile& file, int lock) {
  // Whoever reads networkgrpc's output to its end must not wait for this process.
  Spawn({kThisProgram,
         {{STDIN_FILENO}, {STDOUT_FILENO}, {STDERR_FILENO}, {kLockDescriptor, lock}},
         true},
        {"networkgrpc", kRescuerCommand, file.Stem()});
}

bool RestoreUntilDone(const CheckpointFile& file,
                      const std::function<void(const std::string&, double)>& report) {
  const Json snapshot = file.Read()["snapshot"];
  bool must_reload = file.Progress()["must_reload"];
  std::string problem;
  const auto save = [&] { file.SaveProgress(must_reload, problem); };
  const FileWatch watch(file.Stem() + ".restoring");
  int answers = 0;
  for (double pause = 1; answers < kMostAnswers; pause = std::min(2 * pause, kLongestPause)) {
    try {
      Restore(snapshot, must_reload, save);
      file.RemoveRestored();
      return true;
    } catch (const Failure& failure) {
      problem = failure.message;
      answers = IsAnswer(failure) ? answers + 1 : 0;
    }
    save();
    report(problem, pause);
    watch.Wait(pause);
  }
  return false;
}

int RunRescuer(const std::string& stem) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_IGN);
  openlog("networkgrpc", LOG_PID, LOG_DAEMON);
  const CheckpointFile file(stem);
  const Witness witness(kLockDescriptor);
  try {
    const Json content = file.Read();
    const std::string of = "the checkpoint of '" + content["command"].get<std::string>() + "'";
    WaitForDeadline(file, witness, content["deadline"], content.value("process", 0));
    file.BeginRestoring(witness);  // unless another has begun it, or confirmed
    if (witness.SawRemoval() || !file.IsRestoring()) return 0;
    const bool is_restored =
        RestoreUntilDone(file, [&of](const std::string& problem, double pause) {
          syslog(LOG_WARNING, "cannot restore %s yet: %s; trying again in %.0f s", of.c_str(),
                 problem.c_str(), pause);
        });
    syslog(is_restored ? LOG_NOTICE : LOG_ERR, "%s is %s", of.c_str(),
           is_restored ? "restored" : "abandoned: see 'networkgrpc checkpoint'");
    return is_restored ? 0 : 1;
  } catch (const Failure& failure) {  // confirmed before this process could read it, or damaged
    return failure.status == ExitStatus::kNotFound ? 0 : 1;
  }
}

}  // namespace tool
