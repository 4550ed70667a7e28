// networkgrpc watch: prints what changes.
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <optional>

#include "NetworkgRPC.h"
#include "tools/call.h"
#include "tools/envelope.h"
#include "tools/host.h"
#include "tools/interfaces.h"
#include "tools/state.h"
#include "tools/tool.h"

namespace tool {
namespace {

// Every line is written in one piece, so there is nothing to finish.
void End(int) { _exit(static_cast<int>(ExitStatus::kDone)); }

// What can be set, and what comes of it.
Json Observe() {
  Json state = ReadState();
  Json live = {{"switch_mode", Get<NetworkgRPC::SwitchMode>(Daemon::kNetworkManager,
                                                            "read the switch mode in effect",
                                                            NetworkgRPC::GetCurrentSwitchMode)
                                   .id},
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

  void Look() {
    deadline::Start(tool.Limit());
    std::optional<Json> now;
    std::optional<Failure> failure;
    try {
      now = Observe();
    } catch (const Failure& it) {
      failure = it;
    }
    deadline::Stop();
    if (failure.has_value())
      Tell(*failure);
    else
      Tell(*now);
  }

 private:
  void Tell(const Failure& failure) {
    if (last_error == failure.what()) return;
    last_error = failure.what();
    Write(tool.json ? JsonText(FailureEnvelope("watch", failure))
                    : std::string(failure.what()) + "\n");
  }

  void Tell(const Json& now) {
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
    Write(tool.json ? JsonText(SuccessEnvelope("watch", event))
                    : ShowDifferences(Json::array({event})));
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
    watcher.Look();
    poll(nullptr, 0, static_cast<int>(interval * 1000));
  }
}

}  // namespace

void AddWatch(Tool& tool) {
  const auto interval = std::make_shared<double>(2);
  CLI::App& verb = tool.AddVerb(tool.app, "watch",
                                {"Prints what changes, a line each, until interrupted.",
                                 [&tool, interval]() -> Json { Run(tool, *interval); },
                                 [](const Json&) { return std::string(); },
                                 {"timeout --preserve-status 1 networkgrpc watch --interval 0.2"}});
  verb.add_option("--interval", *interval, "Time between two looks; default 2")
      ->type_name("SECONDS")
      ->check(Seconds(0.05));
}

}  // namespace tool
