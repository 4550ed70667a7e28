// networkgrpc wait: until the device is as it should be.
#include <poll.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "client/environment.h"
#include "tools/call_options.h"
#include "tools/checkpoint_file.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/observation.h"

namespace tool {
namespace {

// Something to wait for.
struct Condition {
  std::string text;                      // as typed
  std::function<std::string()> missing;  // empty if it holds; throws Failure
  std::optional<std::string> reason;     // what was missing last, and why
};

std::string MissingDaemons() {
  ReadHostname();
  ReadDeviceName();
  return "";
}

std::string MissingRoles() {
  const auto interfaces = ReadInterfaces();
  for (const client::Setting* role : {&client::kControlInterface, &client::kDantePrimaryInterface,
                                      &client::kDanteSecondaryInterface}) {
    const bool is_found = std::any_of(interfaces.begin(), interfaces.end(),
                                      [&](const Interface& it) { return it.role == role->role; });
    if (!is_found && !role->Value().empty())
      return "no interface '" + role->Value() + "' for the role " + role->role;
  }
  return "";
}

std::string MissingClock() {
  const Json clock = ReadPtp()["clock"];
  return IsSynchronised(clock) ? "" : "the PTP clock is " + TextOrUnknown(clock);
}

std::string MissingLink(const std::string& name) {
  const Json in_effect = ToJson(FindInterface(name))["in_effect"];
  const bool is_up = !in_effect.is_null() && in_effect["speed_mbit_s"] != 0;
  return is_up ? "" : "interface '" + name + "' has no link";
}

std::string MissingValue(const Target& target) {
  const bool of_dante = target.path.rfind("dante", 0) == 0 || target.path.rfind("live.ptp", 0) == 0;
  const Json observed = of_dante ? ObserveDante() : ObserveNetwork();
  return Holds(target, observed) ? "" : target.path + " is not " + target.value;
}

Condition ConditionOf(const std::string& text) {
  constexpr const char* kLink = "link:";
  if (text == "daemons") return {text, MissingDaemons, {}};
  if (text == "roles") return {text, MissingRoles, {}};
  if (text == "ptp") return {text, MissingClock, {}};
  if (text.rfind(kLink, 0) == 0)
    return {text, [name = text.substr(5)] { return MissingLink(name); }, {}};
  if (text.find('=') == std::string::npos)
    throw Failure(ExitStatus::kUsage, "--for '" + text +
                                          "' must be daemons, roles, ptp, link:INTERFACE or "
                                          "FIELD=VALUE");
  return {text, [target = TargetOf("--for", text)] { return MissingValue(target); }, {}};
}

// Finds out what is missing. At the end of the time the last that was found stays.
void Update(Condition& condition) {
  try {
    condition.reason = condition.missing();
  } catch (const Failure& failure) {
    if (failure.status != ExitStatus::kTimeLimit || !condition.reason)
      condition.reason = failure.message;
  }
}

Json Wait(const std::vector<std::string>& wanted, double seconds) {
  std::vector<Condition> conditions;
  for (const std::string& text : wanted) conditions.push_back(ConditionOf(text));
  if (conditions.empty()) conditions.push_back(ConditionOf("daemons"));
  const double begin = SecondsSinceBoot();
  LimitCalls(seconds);
  while (true) {
    Json missing = Json::array();
    for (Condition& condition : conditions) {
      Update(condition);
      if (!condition.reason->empty())
        missing.push_back({{"condition", condition.text}, {"reason", *condition.reason}});
    }
    const double waited = SecondsSinceBoot() - begin;
    if (missing.empty()) return {{"missing", missing}, {"waited_s", waited}};
    if (waited >= seconds)
      throw Failure(ExitStatus::kTimeLimit,
                    "not yet: " + missing[0]["condition"].get<std::string>() + ": " +
                        missing[0]["reason"].get<std::string>())
          .With({{"missing", missing}, {"waited_s", waited}});
    constexpr double kPause = 0.2;
    poll(nullptr, 0, static_cast<int>(1000 * std::min(kPause, seconds - waited)) + 1);
  }
}

std::string ShowAwaited(const Json& result) {
  std::string text;
  for (const Json& it : result["missing"])
    text += "missing  " + Text(it["condition"]) + ": " + Text(it["reason"]) + "\n";
  return text;
}

}  // namespace

void AddWait(Tool& tool) {
  struct Arguments {
    std::vector<std::string> wanted;
    double timeout = 60;
  };
  const auto arguments = std::make_shared<Arguments>();
  Command verb =
      tool.AddVerb(tool.Top(), "wait",
                   {"Wait until the device is as it should be",
                    [arguments] { return Wait(arguments->wanted, arguments->timeout); },
                    ShowAwaited,
                    {"networkgrpc wait --timeout 5",
                     "networkgrpc wait --for roles --for ptp --for link:lan1 --timeout 5",
                     "networkgrpc wait --for live.interfaces[lan1].active=true"}});
  verb.Option("--for", "CONDITION", &arguments->wanted,
              "daemons, which is the default, roles, ptp, link:INTERFACE or FIELD=VALUE; may be "
              "repeated");
  verb.Seconds("--timeout", &arguments->timeout, 0.1, "Longest time to wait; default 60");
}

}  // namespace tool
