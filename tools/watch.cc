// networkgrpc watch: prints changes.
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>

#include "tools/call.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/state.h"
#include "tools/switch.h"
#include "tools/tool.h"

namespace tool {
namespace {

// The settings, and what is in effect.
Json ObserveNetwork() {
  Json live = {{"switch_mode", ReadSwitchModeInEffect().id()},
               {"dns", ReadDnsServers()},
               {"gateway", ReadGateway()},
               {"interfaces", Json::array()}};
  for (const auto& it : ReadInterfaces()) {
    Json entry = {{"name", it.name}};
    entry.update(ToJson(it)["in_effect"]);
    live["interfaces"].push_back(entry);
  }
  return {{"network", ReadNetworkState()}, {"live", live}};
}

Json ObserveDante() {
  const Json clock = ReadPtp()["clock"];
  return {{"dante", ReadDanteState()}, {"live", {{"ptp", {{"clock", clock}}}}}};
}

/// Where the watchers of both daemons write, one line at a time.
class Lines {
 public:
  explicit Lines(bool as_json) : json(as_json) {}

  void Event(const std::string& path, const Json& from, const Json& to) {
    const Json event = {{"path", path}, {"from", from}, {"to", to}};
    Write(ResultJson("watch", event), ShowDifferences(Json::array({event})));
  }

  void Error(const Failure& failure) {
    Write(ErrorJson("watch", failure), terminal::Printable(failure.message) + "\n");
  }

  /// Waits; false if the program is to end.
  bool Continues(double seconds) {
    std::unique_lock<std::mutex> lock(mutex);
    const auto pause = std::chrono::duration<double>(seconds);
    return !ended.wait_for(lock, pause, [this] { return has_ended; });
  }

  void End() {
    const std::lock_guard<std::mutex> lock(mutex);
    has_ended = true;
    ended.notify_all();
  }

  bool CanWrite() const { return static_cast<bool>(std::cout); }

 private:
  void Write(Json object, const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (has_ended) return;
    const std::string time = UtcTime(std::time(nullptr));
    object["time"] = time;
    std::cout << (json ? JsonText(object) : time + " " + text) << std::flush;
    if (CanWrite()) return;
    has_ended = true;
    ended.notify_all();
  }

  const bool json;
  std::mutex mutex;
  std::condition_variable ended;
  bool has_ended = false;
};

// Watches one daemon: what another does, or does not, is no obstacle.
class Watcher {
 public:
  Watcher(Lines& to, Daemon which, Json (*how)()) : lines(to), daemon(which), observe(how) {}

  void Run(double interval) {
    do {
      Poll();
    } while (lines.Continues(interval));
  }

 private:
  void Poll() {
    try {
      Report(observe());
    } catch (const Failure& failure) {
      if (last_error != failure.message) lines.Error(failure);
      last_error = failure.message;
    }
  }

  void Report(const Json& now) {
    if (!last_error.empty()) lines.Event(Name(daemon), nullptr, "answers again");
    last_error.clear();
    if (last.is_null())
      lines.Event(Name(daemon), nullptr, "watched");
    else
      for (const Difference& it : Differences("", last, now)) lines.Event(it.path, it.from, it.to);
    last = now;
  }

  Lines& lines;
  const Daemon daemon;
  Json (*const observe)();
  Json last;
  std::string last_error;
};

// Ends when interrupted, with success, or when nobody reads the lines any more.
Json Run(const Tool& tool, double interval) {
  Lines lines(tool.json);
  const interrupt::Handler handler([&lines] { lines.End(); });
  Watcher network(lines, Daemon::kNetworkManager, ObserveNetwork);
  Watcher dante(lines, Daemon::kDante, ObserveDante);
  std::thread other([&dante, interval] { dante.Run(interval); });
  network.Run(interval);
  other.join();
  if (!lines.CanWrite()) throw Failure(ExitStatus::kFailed, "cannot write the lines");
  return nullptr;
}

}  // namespace

void AddWatch(Tool& tool) {
  const auto interval = std::make_shared<double>(2);
  Command verb = tool.AddVerb(tool.Top(), "watch",
                              {"Print changes, one per line, until interrupted",
                               [&tool, interval] { return Run(tool, *interval); },
                               [](const Json&) { return std::string(); },
                               {"timeout --preserve-status 1 networkgrpc watch --interval 0.2"}});
  verb.Seconds("--interval", interval.get(), 0.05, "Time between two readings; default 2");
}

}  // namespace tool
