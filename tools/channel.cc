// networkgrpc channel: the module's transmit and receive channels.
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/channel_ids.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/patch_list.h"
#include "tools/state_import.h"

namespace tool {
namespace {

Json ListChannels() {
  return {{"tx_channels", ToJson(ReadTxChannels())}, {"rx_channels", ToJson(ReadRxChannels())}};
}

std::string ShowChannels(const Json& result) {
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

struct Renaming {
  std::optional<std::string> ids;
  std::optional<std::string> name;
  std::string file;
  bool receive = false;
};

const char* Subject(const Renaming& renaming) {
  return renaming.file.empty() ? "the request" : "the file";
}

Json RenameOne(int id, const std::string& name, bool receive) {
  if (name.empty()) throw Failure(ExitStatus::kUsage, "NAME must not be empty");
  (receive ? RenameRxChannel : RenameTxChannel)(id, name);
  return {{"id", id}, {"name", name}, {"direction", receive ? "receive" : "transmit"}};
}

Json ReadNames() { return {{"dante", ListChannels()}}; }

Json NewNames(const Renaming& renaming) {
  const NamePattern names("NAME", *renaming.name);
  const auto channels = renaming.receive ? Selected(ReadRxChannels(), *renaming.ids, "receive")
                                         : Selected(ReadTxChannels(), *renaming.ids, "transmit");
  Json list = Json::array();
  for (const auto& it : channels.channels())
    list.push_back({{"id", it.id()}, {"name", names.Name(it.id(), list.size())}});
  return {{"dante", {{renaming.receive ? "rx_channels" : "tx_channels", list}}}};
}

Json Rename(Tool& tool, const Renaming& renaming) {
  if (!renaming.file.empty())
    return Import(
        tool, {ChannelNamesFromCsv(renaming.file, ListChannels()), ReadNames, Subject(renaming)});
  if (!renaming.ids || !renaming.name)
    throw Failure(ExitStatus::kUsage, std::string(renaming.ids ? "NAME" : "ID") +
                                          " is required; see 'networkgrpc channel rename --help'");
  if (const auto id = SingleId(*renaming.ids))
    return RenameOne(*id, *renaming.name, renaming.receive);
  return Import(tool, {NewNames(renaming), ReadNames, Subject(renaming)});
}

std::string ShowRename(const Json& result, const Renaming& renaming) {
  if (result.contains("differences")) return ShowImport(result, Subject(renaming));
  return Text(result["direction"]) + " channel " + Text(result["id"]) + " is named '" +
         Text(result["name"]) + "'\n";
}

}  // namespace

void AddChannel(Tool& tool) {
  const Command noun = tool.AddNoun("channel", "List and rename the channels", "list");
  tool.AddVerb(noun, "list",
               {"List the transmit and receive channels",
                ListChannels,
                ShowChannels,
                {"networkgrpc channel list"}});
  tool.AddVerb(noun, "count",
               {"Show the number of channels", Count, ShowCount, {"networkgrpc channel count"}});
  const auto renaming = std::make_shared<Renaming>();
  Command rename =
      tool.AddVerb(noun, "rename",
                   {"Rename transmit channels, or receive channels",
                    [&tool, renaming] { return Rename(tool, *renaming); },
                    [renaming](const Json& result) { return ShowRename(result, *renaming); },
                    {"networkgrpc channel rename 1 'Main left'",
                     "networkgrpc channel rename --receive 1-8 'Stage {1}' --yes"}});
  rename
      .OptionalArgument("ID", &renaming->ids,
                        "Channels: ids of 'channel list', as 8 or 1-8,12, or all")
      .Reject(FaultOfIds)
      .Offer(Candidates::kTxChannels);
  rename.OptionalArgument("NAME", &renaming->name,
                          "The new name. For several channels, {} stands for the id, {1} counts "
                          "from 1, {{ and }} are braces");
  rename.Flag("--receive", &renaming->receive, "Receive channels, not transmit channels");
  rename
      .Option("--from", "FILE", &renaming->file,
              "Names from a CSV file with the columns direction (transmit or receive), id and "
              "name; - for standard input")
      .Offer(Candidates::kFiles);
  rename.AtMostOne({"--from", "ID"});
  rename.AtMostOne({"--from", "--receive"});
  tool.AddYes(rename);
  tool.Undoable(rename, Daemon::kDante);
}

}  // namespace tool
