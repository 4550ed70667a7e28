// networkgrpc channel: the module's transmit and receive channels.
#include "DantegRPC.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante_settings.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kDante;
using Channels = std::vector<DantegRPC::Channel>;

Json ToJson(const Channels& channels) {
  Json list = Json::array();
  for (const auto& channel : channels) list.push_back({{"id", channel.id}, {"name", channel.name}});
  return list;
}

Json List() {
  return {{"tx_channels", ToJson(ReadTxChannels())}, {"rx_channels", ToJson(ReadRxChannels())}};
}

std::string ShowList(const Json& result) {
  terminal::Table table({"DIRECTION", "ID", "NAME"});
  for (const Json& channel : result["tx_channels"])
    table.Add({"transmit", channel["id"].dump(), channel["name"]});
  for (const Json& channel : result["rx_channels"])
    table.Add({"receive", channel["id"].dump(), channel["name"]});
  return table.Text();
}

Json Count() {
  int tx = 0;
  int rx = 0;
  Do(kDaemon, "count the channels", [&] { return DantegRPC::GetChannelsNum(tx, rx); });
  return {{"tx", tx}, {"rx", rx}};
}

std::string ShowCount(const Json& result) {
  return result["tx"].dump() + " transmit, " + result["rx"].dump() + " receive\n";
}

Json Rename(int id, const std::string& name) {
  if (name.empty()) throw Failure(ExitStatus::kUsage, "a channel's name cannot be empty");
  deadline::Asking(kDaemon);
  if (!DantegRPC::SetTxChannelName({id, name})) {
    const Failure failure = Explain(kDaemon, "rename transmit channel " + std::to_string(id));
    Channels channels;
    if (failure.status == ExitStatus::kUnreachable || !DantegRPC::GetTxChannels(channels))
      throw failure;
    for (const auto& channel : channels)
      if (channel.id == id) throw failure;
    throw Failure(ExitStatus::kNotFound, "there is no transmit channel " + std::to_string(id),
                  kDaemon);
  }
  return {{"id", id}, {"name", name}};
}

}  // namespace

void AddChannel(Tool& tool) {
  CLI::App& noun = tool.AddNoun("channel", "Transmit and receive channels.", "list");
  tool.AddVerb(noun, "list", {"Lists the channels.", List, ShowList, {"networkgrpc channel list"}});
  tool.AddVerb(noun, "count",
               {"Counts the channels.", Count, ShowCount, {"networkgrpc channel count"}});
  const auto id = std::make_shared<int>(0);
  const auto name = std::make_shared<std::string>();
  CLI::App& rename =
      tool.AddVerb(noun, "rename",
                   {"Renames a transmit channel.",
                    [id, name] { return Rename(*id, *name); },
                    [](const Json& result) {
                      return "transmit channel " + result["id"].dump() + " is now '" +
                             terminal::Printable(result["name"].get<std::string>()) + "'\n";
                    },
                    {"networkgrpc channel rename 1 'Main left'"}});
  tool.Offer(rename.add_option("ID", *id, "The channel's id in 'channel list'")->required(),
             Candidates::kTxChannels);
  rename.add_option("NAME", *name, "The new name")->required();
}

}  // namespace tool
