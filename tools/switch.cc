// networkgrpc switch: how the device's network ports are used.
#include "tools/switch.h"

#include "terminal/table.h"
#include "tools/call.h"
#include "tools/commands.h"

namespace tool {
namespace {

Json ToJson(const nm::SwitchMode& mode) { return {{"id", mode.id()}, {"name", mode.name()}}; }

std::string ShowMode(const Json& mode) {
  return Text(mode["id"]) + " " + Text(mode["name"]) + "\n";
}

nm::SwitchModes ReadModes() { return Read(rpc::kGetAvailableSwitchModes, "list the switch modes"); }

Json ListModes() {
  Json modes = Json::array();
  const auto all = ReadModes();
  const auto stored = ReadStoredSwitchMode();
  const auto in_effect = ReadSwitchModeInEffect();
  for (const auto& mode : all.modes()) {
    Json entry = ToJson(mode);
    entry["stored"] = mode.id() == stored.id();
    entry["in_effect"] = mode.id() == in_effect.id();
    modes.push_back(entry);
  }
  return {{"modes", modes}, {"pending", stored.id() != in_effect.id()}};
}

std::string ShowModes(const Json& result) {
  terminal::Table table({"ID", "NAME", "STORED", "IN-EFFECT"});
  for (const Json& mode : result["modes"])
    table.Add({Text(mode["id"]), mode["name"], mode["stored"] ? "yes" : "no",
               mode["in_effect"] ? "yes" : "no"});
  return table.Text() + (result["pending"] ? "The stored mode is not in effect yet.\n" : "");
}

std::vector<std::string> Changes(int id) {
  const auto modes = ReadModes();
  const auto* wanted = FindById(modes.modes(), id);
  const auto in_effect = ReadSwitchModeInEffect();
  return {"switch mode " + std::to_string(id) + (wanted != nullptr ? " " + wanted->name() : "") +
          " will be stored, for the next reload or restart; in effect is " +
          std::to_string(in_effect.id()) + " " + in_effect.name()};
}

Json SetMode(const Tool& tool, int id) {
  tool.Confirm([id] { return Changes(id); });
  SelectSwitchMode(id);
  return {{"id", id}};
}

}  // namespace

nm::SwitchMode ReadSwitchModeInEffect() {
  return Read(rpc::kGetSwitchModeStatus, "read the switch mode in effect");
}

nm::SwitchMode ReadStoredSwitchMode() {
  return Read(rpc::kGetSwitchMode, "read the stored switch mode");
}

void SelectSwitchMode(std::int32_t id) {
  nm::Id request;
  request.set_id(id);
  const Listing listing{"switch list",
                        [id] { return FindById(ReadModes().modes(), id) != nullptr; }};
  ChangeObject(listing, rpc::kSetSwitchMode, "select switch mode " + std::to_string(id), request);
}

void AddSwitch(Tool& tool) {
  const Command noun = tool.AddNoun("switch", "Show and select the switch mode", "list");
  tool.AddVerb(
      noun, "list",
      {"List the switch modes of the device", ListModes, ShowModes, {"networkgrpc switch list"}});
  tool.AddVerb(noun, "current",
               {"Show the switch mode in effect",
                [] { return ToJson(ReadSwitchModeInEffect()); },
                ShowMode,
                {"networkgrpc switch current"}});
  tool.AddVerb(noun, "configured",
               {"Show the stored switch mode",
                [] { return ToJson(ReadStoredSwitchMode()); },
                ShowMode,
                {"networkgrpc switch configured"}});
  const auto id = std::make_shared<int>(0);
  Command set = tool.AddVerb(
      noun, "set",
      {"Select a switch mode: how the network ports are used",
       [&tool, id] { return SetMode(tool, *id); },
       [](const Json& result) { return "switch mode " + Text(result["id"]) + " is stored\n"; },
       {"networkgrpc switch set 1 --yes"}});
  tool.AddYes(set);
  tool.Undoable(set, Daemon::kNetworkManager);
  set.Argument("ID", id.get(), "The mode's id in 'switch list'").Offer(Candidates::kSwitchModes);
}

}  // namespace tool
