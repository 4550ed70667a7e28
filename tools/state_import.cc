#include "tools/state_import.h"

#include <iostream>
#include <optional>

#include "NetworkManagerClient.h"
#include "tools/call.h"
#include "tools/state.h"
#include "tools/state_plan.h"

namespace tool {
namespace {

struct Arguments {
  std::string file;
  bool reload = false;
};

std::vector<Difference> DifferencesOf(const std::vector<Step>& steps) {
  std::vector<Difference> differences;
  for (const Step& step : steps)
    for (Difference& it : Differences(step.path, step.from, step.to))
      differences.push_back(std::move(it));
  return differences;
}

Json Impossible(const std::vector<Step>& steps) {
  Json list = Json::array();
  for (const Step& step : steps)
    if (!step.impossible.empty())
      list.push_back({{"path", step.path}, {"reason", step.impossible}});
  return list;
}

std::string ShowReasons(const std::string& heading, const Json& list) {
  std::string text;
  for (const Json& it : list) text += "  " + Text(it["path"]) + ": " + Text(it["reason"]) + "\n";
  return text.empty() ? "" : heading + "\n" + text;
}

std::string ShowPlan(const Json& result) {
  return "Differences:\n" + ShowDifferences(result["differences"]) +
         ShowReasons("Cannot be applied:", result["not_possible"]);
}

// NTP servers are set all or none: half of a list would look intended.
void CheckNtpServers(const std::vector<Step>& steps) {
  for (const Step& step : steps)
    if (step.path == "network.ntp" && !step.impossible.empty())
      throw Failure(ExitStatus::kFailed,
                    "network.ntp: " + step.impossible + "; nothing was changed");
}

void Apply(const std::vector<Step>& steps, Json& result) {
  std::optional<Failure> first;
  for (const Step& step : steps) {
    if (!step.set) continue;
    if (first.has_value()) {
      result["not_applied"].push_back({{"path", step.path}, {"reason", "not tried"}});
      continue;
    }
    try {
      Do(step.daemon, "set " + step.path, step.set);
      result["applied"].push_back(step.path);
    } catch (const Failure& failure) {
      result["not_applied"].push_back({{"path", step.path}, {"reason", failure.what()}});
      first = failure;
    }
  }
  if (first.has_value()) throw first->With(result);
}

void Reload() {
  Do(Daemon::kNetworkManager, "reload the network configuration", [] {
    ostrevan::networkmanager::Success reply;
    return NetworkManagerClient::GetInstance().ReloadNetworkConfig(&reply).ok() && reply.success();
  });
}

void Verify(const Json& wanted, Json& result) {
  const auto remaining = Differences("", ReadState(), wanted);
  result["remaining"] = ToJson(remaining);
  result["verified"] = remaining.empty();
  if (!remaining.empty())
    throw Failure(ExitStatus::kFailed, "verification failed: the device differs from the document")
        .With(result);
}

Json Run(Tool& tool, const Arguments& arguments) {
  const Json document = ReadStateFile(arguments.file);
  const Json current = ReadState();
  const Json wanted = Merged(current, document);
  const auto steps = Plan(current, wanted);
  CheckNtpServers(steps);
  Json result = {{"differences", ToJson(DifferencesOf(steps))},
                 {"not_possible", Impossible(steps)},
                 {"applied", Json::array()},
                 {"not_applied", Json::array()},
                 {"remaining", Json::array()},
                 {"reload", arguments.reload},
                 {"verified", false}};
  if (!steps.empty()) {
    std::cerr << ShowPlan(result);
    tool.Confirm("the device will be changed", "Change it?");
    Apply(steps, result);
  }
  if (arguments.reload) Reload();
  Verify(wanted, result);
  return result;
}

std::string Show(const Json& result) {
  if (result["differences"].empty()) return "the device matches the document\n";
  std::string text;
  for (const Json& path : result["applied"]) text += "applied      " + Text(path) + "\n";
  for (const Json& it : result["not_applied"])
    text += "not applied  " + Text(it["path"]) + ": " + Text(it["reason"]) + "\n";
  for (const Json& it : result["remaining"])
    text += "differs      " + ShowDifferences(Json::array({it}));
  return result["verified"] ? text + "verified\n" : text;
}

}  // namespace

void AddImport(Tool& tool) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& verb =
      tool.AddVerb(tool.app, "import",
                   {"Apply a state document to the device",
                    [&tool, arguments] { return Run(tool, *arguments); },
                    Show,
                    {"networkgrpc export >state.json && networkgrpc import state.json --yes"}});
  tool.Offer(
      verb.add_option("FILE", arguments->file, "The document; - for standard input")->required(),
      Candidates::kFiles);
  verb.add_flag("--reload", arguments->reload, "Apply the stored network configuration at the end");
  tool.AddYes(verb);
}

}  // namespace tool
