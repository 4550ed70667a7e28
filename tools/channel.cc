// networkgrpc channel: the module's transmit and receive channels.
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/tool.h"

namespace tool {
namespace {

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

Json Rename(int id, const std::string& name, bool receive) {
  if (name.empty()) throw Failure(ExitStatus::kUsage, "NAME must not be empty");
  (receive ? RenameRxChannel : RenameTxChannel)(id, name);
  return {{"id", id}, {"name", name}, {"direction", receive ? "receive" : "transmit"}};
}

std::string ShowRename(const Json& result) {
  return Text(result["direction"]) + " channel " + Text(result["id"]) + " is named '" +
         Text(result["name"]) + "'\n";
}

}  // namespace

void AddChannel(Tool& tool) {
  const Command noun = tool.AddNoun("channel", "List and rename the channels", "list");
  tool.AddVerb(
      noun, "list",
      {"List the transmit and receive channels", List, ShowList, {"networkgrpc channel list"}});
  tool.AddVerb(noun, "count",
               {"Show the number of channels", Count, ShowCount, {"networkgrpc channel count"}});
  const auto id = std::make_shared<int>(0);
  const auto name = std::make_shared<std::string>();
  const auto receive = std::make_shared<bool>(false);
  Command rename = tool.AddVerb(noun, "rename",
                                {"Rename a transmit channel, or a receive channel",
                                 [id, name, receive] { return Rename(*id, *name, *receive); },
                                 ShowRename,
                                 {"networkgrpc channel rename 1 'Main left'",
                                  "networkgrpc channel rename --receive 1 'Stage left'"}});
  rename.Argument("ID", id.get(), "The channel's id in 'channel list'")
      .Offer(Candidates::kTxChannels);
  rename.Argument("NAME", name.get(), "The new name");
  rename.Flag("--receive", receive.get(), "The receive channel with this id");
  tool.Undoable(rename, Daemon::kDante);
}

}  // namespace tool
