// networkgrpc channel: the module's transmit and receive channels.
#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/tool.h"

namespace tool {
namespace {

Json ToJson(const dapi::Channels& channels) {
  Json list = Json::array();
  for (const auto& it : channels.channels()) list.push_back({{"id", it.id()}, {"name", it.name()}});
  return list;
}

Json List() {
  return {{"tx_channels", ToJson(ReadTxChannels())}, {"rx_channels", ToJson(ReadRxChannels())}};
}

std::string ShowList(const Json& result) {
  terminal::Table table({"DIRECTION", "ID", "NAME"});
  for (const Json& channel : result["tx_channels"])
    table.Add({"transmit", Text(channel["id"]), channel["name"]});
  for (const Json& channel : result["rx_channels"])
    table.Add({"receive", Text(channel["id"]), channel["name"]});
  return table.Text();
}

Json Count() {
  return {{"tx", ReadTxChannels().channels_size()}, {"rx", ReadRxChannels().channels_size()}};
}

std::string ShowCount(const Json& result) {
  return Text(result["tx"]) + " transmit, " + Text(result["rx"]) + " receive\n";
}

Json Rename(int id, const std::string& name) {
  if (name.empty()) throw Failure(ExitStatus::kUsage, "NAME must not be empty");
  RenameTxChannel(id, name);
  return {{"id", id}, {"name", name}};
}

std::string ShowRename(const Json& result) {
  return "transmit channel " + Text(result["id"]) + " is named '" + Text(result["name"]) + "'\n";
}

}  // namespace

void AddChannel(Tool& tool) {
  CLI::App& noun =
      tool.AddNoun("channel", "List the channels and rename transmit channels", "list");
  tool.AddVerb(
      noun, "list",
      {"List the transmit and receive channels", List, ShowList, {"networkgrpc channel list"}});
  tool.AddVerb(noun, "count",
               {"Show the number of channels", Count, ShowCount, {"networkgrpc channel count"}});
  const auto id = std::make_shared<int>(0);
  const auto name = std::make_shared<std::string>();
  CLI::App& rename = tool.AddVerb(noun, "rename",
                                  {"Rename a transmit channel",
                                   [id, name] { return Rename(*id, *name); },
                                   ShowRename,
                                   {"networkgrpc channel rename 1 'Main left'"}});
  tool.Offer(
      terminal::AddInteger(rename, "ID", *id, "The channel's id in 'channel list'")->required(),
      Candidates::kTxChannels);
  rename.add_option("NAME", *name, "The new name")->required();
}

}  // namespace tool
