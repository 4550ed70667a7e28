// networkgrpc switch: how the device's network ports are used.
#include "tools/switch.h"

#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;
using Mode = NetworkgRPC::SwitchMode;
using Modes = std::vector<Mode>;

Mode ReadStored() {
  return Get<Mode>(kDaemon, "read the stored switch mode", NetworkgRPC::GetConfiguredSwitchMode);
}

Json ToJson(const Mode& mode) { return {{"id", mode.id}, {"name", mode.name}}; }

std::string ShowMode(const Json& mode) {
  return Text(mode["id"]) + " " + Text(mode["name"]) + "\n";
}

Json List() {
  Json modes = Json::array();
  const auto all = Get<Modes>(kDaemon, "list the switch modes", NetworkgRPC::GetSwitchModes);
  const Mode stored = ReadStored();
  const Mode in_effect = ReadSwitchModeInEffect();
  for (const Mode& mode : all) {
    Json entry = ToJson(mode);
    entry["configured"] = mode.id == stored.id;
    entry["current"] = mode.id == in_effect.id;
    modes.push_back(entry);
  }
  return {{"modes", modes}};
}

std::string ShowList(const Json& result) {
  terminal::Table table({"ID", "NAME", "STORED", "IN EFFECT"});
  for (const Json& mode : result["modes"])
    table.Add({Text(mode["id"]), mode["name"], mode["configured"] ? "yes" : "",
               mode["current"] ? "yes" : ""});
  return table.Text();
}

Json Set(int id) {
  DoTo(ListedBy(NetworkgRPC::GetSwitchModes, id, "switch list"), kDaemon,
       "select switch mode " + std::to_string(id), [id] { return SelectSwitchMode(id); });
  return {{"id", id}};
}

}  // namespace

Mode ReadSwitchModeInEffect() {
  return Get<Mode>(kDaemon, "read the switch mode in effect", NetworkgRPC::GetCurrentSwitchMode);
}

// Wraps as the library does, so that every id reaches the daemon.
bool SelectSwitchMode(std::int32_t id) {
  return NetworkgRPC::SetSwitchMode(static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + 1U));
}

void AddSwitch(Tool& tool) {
  CLI::App& noun = tool.AddNoun("switch", "Show and select the switch mode", "list");
  tool.AddVerb(
      noun, "list",
      {"List the switch modes of the device", List, ShowList, {"networkgrpc switch list"}});
  tool.AddVerb(noun, "current",
               {"Show the switch mode in effect",
                [] { return ToJson(ReadSwitchModeInEffect()); },
                ShowMode,
                {"networkgrpc switch current"}});
  tool.AddVerb(noun, "configured",
               {"Show the stored switch mode",
                [] { return ToJson(ReadStored()); },
                ShowMode,
                {"networkgrpc switch configured"}});
  const auto id = std::make_shared<int>(0);
  CLI::App& set = tool.AddVerb(
      noun, "set",
      {"Select a switch mode: how the network ports are used",
       [id] { return Set(*id); },
       [](const Json& result) { return "switch mode " + Text(result["id"]) + " is selected\n"; },
       {"networkgrpc switch set 1"}});
  tool.Offer(terminal::AddInteger(set, "ID", *id, "The mode's id in 'switch list'")->required(),
             Candidates::kSwitchModes);
}

}  // namespace tool
