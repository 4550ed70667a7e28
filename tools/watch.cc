// networkgrpc watch: prints changes.
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <optional>

#include "terminal/arguments.h"
#include "tools/call.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/output.h"
#include "tools/state.h"
#include "tools/switch.h"
#include "tools/tool.h"

namespace tool {
namespace {

// Every line is written at once, so that nothing remains to be written.
void End(int) { _exit(static_cast<int>(ExitStatus::kDone)); }

// The settings, and what is in effect.
Json Observe() {
  Json state = ReadState();
  Json live = {{"switch_mode", ReadSwitchModeInEffect().id},
               {"dns", ReadDns()},
               {"gateway", ReadGateway()},
               {"interfaces", Json::array()}};
  for (const auto& it : AllInterfaces())
    live["interfaces"].push_back(
        {{"name", it.name}, {"active", it.active}, {"ip", it.ip}, {"netmask", it.netmask}});
  return {{"network", state["network"]}, {"dante", state["dante"]}, {"live", live}};
}

class Watcher {
 public:
  explicit Watcher(Tool& owner) : tool(owner) {}

  void Poll() {
    time_limit::Start(tool.Limit());
    std::optional<Json> now;
    std::optional<Failure> failure;
    try {
      now = Observe();
    } catch (const Failure& it) {
      failure = it;
    }
    time_limit::Stop();
    if (failure.has_value())
      Report(*failure);
    else
      Report(*now);
  }

 private:
  void Report(const Failure& failure) {
    if (last_error == failure.what()) return;
    last_error = failure.what();
    Write(tool.json ? JsonText(ErrorJson("watch", failure))
                    : terminal::Printable(failure.what()) + "\n");
  }

  void Report(const Json& now) {
    if (!last_error.empty()) {
      last_error.clear();
      Event("daemons", nullptr, "answer again");
    }
    if (last.is_null())
      Event("watch", nullptr, "started");
    else
      for (const Difference& it : Differences("", last, now)) Event(it.path, it.from, it.to);
    last = now;
  }

  void Event(const std::string& path, const Json& from, const Json& to) {
    const Json event = {{"path", path}, {"from", from}, {"to", to}};
    Write(tool.json ? JsonText(ResultJson("watch", event)) : ShowDifferences(Json::array({event})));
  }

  void Write(const std::string& line) {
    std::cout << line << std::flush;
    if (!std::cout) throw Failure(ExitStatus::kFailed, "cannot write");
  }

  Tool& tool;
  Json last;
  std::string last_error;
};

[[noreturn]] void Run(Tool& tool, double interval) {
  std::signal(SIGINT, End);
  std::signal(SIGTERM, End);
  Watcher watcher(tool);
  while (true) {
    watcher.Poll();
    poll(nullptr, 0, static_cast<int>(interval * 1000));
  }
}

}  // namespace

void AddWatch(Tool& tool) {
  const auto interval = std::make_shared<double>(2);
  CLI::App& verb = tool.AddVerb(tool.app, "watch",
                                {"Print changes, one per line, until interrupted",
                                 [&tool, interval]() -> Json { Run(tool, *interval); },
                                 [](const Json&) { return std::string(); },
                                 {"timeout --preserve-status 1 networkgrpc watch --interval 0.2"}});
  verb.add_option("--interval", *interval, "Time between two readings; default 2")
      ->type_name("SECONDS")
      ->check(terminal::Seconds(0.05));
}

}  // namespace tool
