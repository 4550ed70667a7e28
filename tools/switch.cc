// networkgrpc switch: how the device's network ports are used.
#include "NetworkgRPC.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/switch_mode.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;
using Mode = NetworkgRPC::SwitchMode;
using Modes = std::vector<Mode>;

Modes AllModes() {
  return Get<Modes>(kDaemon, "list the switch modes", NetworkgRPC::GetSwitchModes);
}

Mode Current() {
  return Get<Mode>(kDaemon, "read the switch mode in effect", NetworkgRPC::GetCurrentSwitchMode);
}

Mode Configured() {
  return Get<Mode>(kDaemon, "read the stored switch mode", NetworkgRPC::GetConfiguredSwitchMode);
}

Json ToJson(const Mode& mode) { return {{"id", mode.id}, {"name", mode.name}}; }

std::string ShowMode(const Json& mode) {
  return mode["id"].dump() + " " + terminal::Printable(mode["name"].get<std::string>()) + "\n";
}

Json List() {
  Json modes = Json::array();
  const Modes all = AllModes();
  const Mode configured = Configured();
  const Mode current = Current();
  for (const Mode& mode : all) {
    Json entry = ToJson(mode);
    entry["configured"] = mode.id == configured.id;
    entry["current"] = mode.id == current.id;
    modes.push_back(entry);
  }
  return {{"modes", modes}};
}

std::string ShowList(const Json& result) {
  terminal::Table table({"ID", "NAME", "CONFIGURED", "CURRENT"});
  for (const Json& mode : result["modes"])
    table.Add({mode["id"].dump(), mode["name"], mode["configured"] ? "yes" : "",
               mode["current"] ? "yes" : ""});
  return table.Text();
}

Json Set(int id) {
  deadline::Asking(kDaemon);
  if (!SelectSwitchMode(id)) {
    const Failure failure = Explain(kDaemon, "select switch mode " + std::to_string(id));
    Modes modes;
    if (failure.status == ExitStatus::kRefused && NetworkgRPC::GetSwitchModes(modes)) {
      for (const Mode& mode : modes)
        if (mode.id == id) throw failure;
      throw Failure(ExitStatus::kNotFound, "there is no switch mode " + std::to_string(id),
                    kDaemon);
    }
    throw failure;
  }
  return {{"id", id}};
}

}  // namespace

void AddSwitch(Tool& tool) {
  CLI::App& noun = tool.AddNoun("switch", "Switch modes: how the network ports are used.", "list");
  tool.AddVerb(noun, "list",
               {"Lists the switch modes that the device offers.",
                List,
                ShowList,
                {"networkgrpc switch list"}});
  tool.AddVerb(noun, "current",
               {"Tells the switch mode in effect.",
                [] { return ToJson(Current()); },
                ShowMode,
                {"networkgrpc switch current"}});
  tool.AddVerb(noun, "configured",
               {"Tells the stored switch mode.",
                [] { return ToJson(Configured()); },
                ShowMode,
                {"networkgrpc switch configured"}});
  const auto id = std::make_shared<int>(0);
  CLI::App& set = tool.AddVerb(
      noun, "set",
      {"Selects a switch mode.",
       [id] { return Set(*id); },
       [](const Json& result) { return "switch mode " + result["id"].dump() + " is selected\n"; },
       {"networkgrpc switch set 1"}});
  tool.Offer(set.add_option("ID", *id, "The mode's id in 'switch list'")->required(),
             Candidates::kSwitchModes);
}

}  // namespace tool
