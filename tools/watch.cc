// networkgrpc watch: prints changes.
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <tuple>

#include "tools/commands.h"
#include "tools/interrupt.h"
#include "tools/json_path.h"
#include "tools/observation.h"
#include "tools/output.h"
#include "tools/state.h"
#include "tools/values.h"

namespace tool {
namespace {

struct WatchArguments {
  double interval = 2;  // seconds
  std::vector<std::string> only;
  std::optional<std::uint64_t> count;
  std::optional<std::string> until;
};

/// Where the watchers of both daemons write, one line at a time.
class EventLines {
 public:
  EventLines(const Tool& of, const WatchArguments& arguments)
      : tool(of), only(arguments.only), left(arguments.count) {}

  /// What becomes of a daemon.
  void Event(const std::string& path, const Json& to) { Write(path, nullptr, to, false); }

  void Change(const Difference& it) {
    const auto is_nested = [&](const std::string& path) { return AreNested(path, it.path); };
    if (only.empty() || std::any_of(only.begin(), only.end(), is_nested))
      Write(it.path, it.from, it.to, true);
  }

  void Error(const Failure& failure) {
    if (Write(ErrorJson("watch", failure), terminal::Printable(failure.message) + "\n")) Finish();
  }

  /// Ends also the calls of the other watcher.
  void Finish() {
    End();
    interrupt::Request();
  }

  /// Waits; false if the program is to end.
  bool Continues(double seconds) {
    std::unique_lock<std::mutex> lock(mutex);
    const auto pause = std::chrono::duration<double>(seconds);
    return !ended.wait_for(lock, pause, [this] { return has_ended; }) && IsRead();
  }

  void End() {
    const std::lock_guard<std::mutex> lock(mutex);
    has_ended = true;
    ended.notify_all();
  }

  bool CanWrite() const { return std::cout && IsRead(); }

 private:
  // False once the other end of a pipe is closed.
  static bool IsRead() {
    pollfd output{STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) == 0;
  }

  void Write(const std::string& path, const Json& from, const Json& to, bool is_change) {
    const Json event = {{"path", path}, {"from", from}, {"to", to}};
    const std::string text = ShowDifferences(Json::array({event}));
    if (Write(ResultJson("watch", event), text, is_change)) Finish();
  }

  /// True for the last line.
  bool Write(Json object, const std::string& text, bool is_change = false) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (has_ended) return false;
    const std::string time = UtcTime(std::time(nullptr));
    object["time"] = time;
    if (object.contains("error") && !tool.get.empty())
      std::cerr << ErrorLine(object["error"]["message"]);
    else
      std::cout << LineOf(object, time + " " + text) << std::flush;
    if (!CanWrite() || (is_change && left.has_value() && --*left == 0)) has_ended = true;
    return has_ended;
  }

  std::string LineOf(const Json& object, const std::string& text) const {
    if (tool.json) return JsonText(object);
    if (!tool.get.empty()) return ValueOrNullLines(object["result"], tool.get);
    return tool.quiet && !object.contains("error") ? "" : text;
  }

  const Tool& tool;
  const std::vector<std::string>& only;
  std::mutex mutex;
  std::optional<std::uint64_t> left;  // lines of changes
  std::condition_variable ended;
  bool has_ended = false;
};

// Watches one daemon: what another does, or does not, is no obstacle.
class Watcher {
 public:
  Watcher(EventLines& to, Daemon which, Json (*how)(), const Target& end)
      : lines(to), daemon(which), observe(how), target(end) {}

  void Run(double interval) {
    do {
      Poll();
    } while (lines.Continues(interval));
  }

 private:
  // The same one, whichever call it fails: the kind, and the daemon's status and message.
  using Problem = std::tuple<ExitStatus, std::string, std::string>;

  void Poll() {
    try {
      Report(observe());
    } catch (const Failure& failure) {
      const Problem problem(failure.status, failure.grpc_status, failure.daemon_message);
      if (last_problem != problem) lines.Error(failure);
      last_problem = problem;
    }
  }

  void Report(const Json& now) {
    if (last_problem.has_value()) lines.Event(Name(daemon), "answers again");
    last_problem.reset();
    if (last.is_null())
      lines.Event(Name(daemon), "watched");
    else
      for (const Difference& it : Differences("", last, now)) lines.Change(it);
    last = now;
    if (!target.path.empty() && Holds(target, now)) lines.Finish();
  }

  EventLines& lines;
  const Daemon daemon;
  Json (*const observe)();
  const Target& target;
  Json last;
  std::optional<Problem> last_problem;
};

Target CheckedTarget(const WatchArguments& arguments) {
  for (const std::string& path : arguments.only) CheckPath("--only", path);
  if (arguments.count == 0U) throw Failure(ExitStatus::kUsage, "--count must be at least 1");
  if (!arguments.until.has_value()) return {};
  Target target = TargetOf("--until", *arguments.until);
  return target;
}

// Ends when interrupted, with success, or when nobody reads the lines any more.
Json Run(const Tool& tool, const WatchArguments& arguments) {
  const Target target = CheckedTarget(arguments);
  EventLines lines(tool, arguments);
  // timeout(1) signals twice: the second time must not end what the first time has ended.
  static const interrupt::Handler until_exit;
  const interrupt::Handler handler([&lines] { lines.End(); });
  Watcher network(lines, Daemon::kNetworkManager, ObserveNetwork, target);
  Watcher dante(lines, Daemon::kDante, ObserveDante, target);
  std::thread other([&] { dante.Run(arguments.interval); });
  network.Run(arguments.interval);
  other.join();
  if (!lines.CanWrite()) throw Failure(ExitStatus::kFailed, "cannot write the lines");
  return nullptr;
}

}  // namespace

void AddWatch(Tool& tool) {
  const auto arguments = std::make_shared<WatchArguments>();
  Command verb = tool.AddVerb(tool.Top(), "watch",
                              {"Print changes, one per line, until interrupted",
                               [&tool, arguments] { return Run(tool, *arguments); },
                               [](const Json&) { return std::string(); },
                               {"timeout --preserve-status 1 networkgrpc watch --interval 0.2",
                                "networkgrpc watch --until live.ptp.clock=disciplined"}});
  verb.Seconds("--interval", &arguments->interval, 0.05, "Time between two readings; default 2");
  verb.Option("--only", "PATH", &arguments->only,
              "Print only changes of what stands at this path, such as dante.routing or "
              "live.interfaces[lan0]; can be repeated");
  verb.Option("--count", "N", &arguments->count, "End after this number of lines of changes");
  verb.Option("--until", "FIELD=VALUE", &arguments->until,
              "End as soon as the value at this path is VALUE, also if it is so at once; of "
              "several values, with [] for every entry, one is enough");
}

}  // namespace tool
