// networkgrpc routing: what each receive channel is subscribed to.
#include <algorithm>
#include <array>
#include <memory>

#include "terminal/table.h"
#include "tools/call.h"
#include "tools/channel_ids.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/patch_list.h"
#include "tools/routing_grid.h"
#include "tools/routing_json.h"
#include "tools/state.h"
#include "tools/state_import.h"

namespace tool {
namespace {

using Link = dapi::LinkInfo;

constexpr const char* kRequest = "the request";
constexpr const char* kFile = "the file";

Json ListSubscriptions(const dapi::Channels& channels) {
  Json routing = Json::array();
  for (const Link& link : ReadRouting(channels)) {
    Json entry = ToJson(link);
    entry["rx_name"] = FindById(channels.channels(), link.id())->name();
    routing.push_back(entry);
  }
  return {{"routing", routing}};
}

Json Get(std::int32_t rx) {
  const auto channels = ReadRxChannels();
  const dapi::Channel* channel = FindById(channels.channels(), rx);
  if (channel == nullptr)
    throw NotFound({Daemon::kDante, rpc::kGetRxChannels.name,
                    "read the subscription of receive channel " + std::to_string(rx)},
                   {"channel list", {}});
  dapi::Channels one;
  *one.add_channels() = *channel;
  return ListSubscriptions(one)["routing"].front();
}

std::string ShowSubscriptions(const Json& result) {
  terminal::Table table(
      {"RX", "NAME", "DEVICE", "CHANNEL", "STREAM", "ENCODING", "SIP", "SESSION"});
  for (const Json& it : result["routing"]) {
    const Json& raw = it["raw"];
    terminal::Table::Row row = {it["rx_channel"].dump(), it["rx_name"], it["device"],
                                it["channel"]};
    if (!raw.is_null())
      row.insert(row.end(), {raw["ip"], Text(raw["encoding"]), raw["sip"],
                             raw["session_id"].is_null() ? "" : raw["session_id"].dump()});
    table.Add(row);
  }
  return table.Text();
}

Json Subscribe(const Link& link) {
  SetSubscription(link);
  return ToJson(link);
}

std::string ShowSubscription(const Json& result) {
  const std::string source = SourceText(result);
  const std::string channel = "receive channel " + Text(result["rx_channel"]);
  return channel +
         (source.empty() ? " is not subscribed\n" : " is subscribed to " + Text(source) + "\n");
}

std::string ShowRouting(const Json& result) {
  return result.contains("routing") ? ShowSubscriptions(result) : ShowSubscription(result);
}

Json GetSeveral(const std::string& ids) {
  return ListSubscriptions(Selected(ReadRxChannels(), ids, "receive"));
}

// One by one, as entries of "routing" in a state document.
using EntryOf = std::function<Json(std::int32_t id, std::size_t position)>;

ChangeSet RoutingOf(const dapi::Channels& channels, const Json& entries, const char* subject) {
  const auto read = [channels] {
    Json routing = Json::array();
    for (const Link& link : ReadRouting(channels)) routing.push_back(ToJson(link));
    return Json{{"dante", {{"routing", routing}}}};
  };
  return {{{"dante", {{"routing", entries}}}}, read, subject};
}

Json SubscribeSeveral(Tool& tool, const std::string& ids, const EntryOf& entry) {
  const auto channels = Selected(ReadRxChannels(), ids, "receive");
  Json entries = Json::array();
  for (const auto& it : channels.channels()) entries.push_back(entry(it.id(), entries.size()));
  return Import(tool, RoutingOf(channels, entries, kRequest));
}

std::string ShowSubscribed(const Json& result) {
  return result.contains("differences") ? ShowImport(result, kRequest) : ShowSubscription(result);
}

Json ImportCsv(Tool& tool, const std::string& file) {
  const auto present = ReadRxChannels();
  const Json document = RoutingFromCsv(file, ToJson(present));
  const Json& entries = document["dante"]["routing"];
  dapi::Channels channels;
  for (const Json& it : entries)
    *channels.add_channels() = *FindById(present.channels(), it["rx_channel"].get<std::int32_t>());
  return Import(tool, RoutingOf(channels, entries, kFile));
}

Json ExportCsv(const std::string& file) {
  return SavedTo(
      file == "-" ? "" : file, [] { return ListSubscriptions(ReadRxChannels()); },
      [](const Json& result) { return RoutingToCsv(result["routing"]); });
}

// An empty name would remove the subscription.
Json Subscribe(int rx, const std::string& device, const std::string& channel) {
  if (device.empty() || channel.empty())
    throw Failure(ExitStatus::kUsage,
                  "DEVICE and CHANNEL must not be empty; see 'networkgrpc routing clear'");
  Link link = Unsubscribed(rx);
  link.set_devicename(device);
  link.set_channelname(channel);
  return Subscribe(link);
}

Json SetSeveral(Tool& tool, const std::string& ids, const std::string& device,
                const std::string& channel) {
  const NamePattern devices("DEVICE", device);
  const NamePattern channels("CHANNEL", channel);
  return SubscribeSeveral(tool, ids, [&](std::int32_t id, std::size_t position) {
    Json entry = ToJson(Unsubscribed(id));
    entry["device"] = devices.Name(id, position);
    entry["channel"] = channels.Name(id, position);
    return entry;
  });
}

Json Clear(Tool& tool, const std::string& ids) {
  if (const auto id = SingleId(ids)) return Subscribe(Unsubscribed(*id));
  return SubscribeSeveral(tool, ids,
                          [](std::int32_t id, std::size_t) { return ToJson(Unsubscribed(id)); });
}

void AddReceiver(Command& verb, std::string* ids) {
  verb.Argument("RX", ids, "Receive channels: ids of 'channel list', as 8 or 1-8,12, or all")
      .Reject(FaultOfIds)
      .Offer(Candidates::kRxChannels);
}

// The parameters of a stream as an entry of "raw" in a state document.
struct Stream {
  std::string rx;
  std::string ip;
  std::array<std::uint32_t, 5> values{};  // value2 to value6
  std::string encoding = "L24";
  std::string sip;
  std::optional<std::uint64_t> session_id;
};

Json ToEntry(const Stream& stream, std::int32_t rx) {
  Json entry = ToJson(Unsubscribed(rx));
  Json& raw = entry["raw"] = {{"ip", stream.ip},
                              {"encoding", stream.encoding},
                              {"sip", stream.sip},
                              {"session_id", nullptr}};
  for (std::size_t i = 0; i < stream.values.size(); ++i)
    raw["value" + std::to_string(i + 2)] = stream.values.at(i);
  if (stream.session_id) raw["session_id"] = *stream.session_id;
  return entry;
}

Json SetRaw(Tool& tool, const Stream& stream) {
  if (stream.ip.empty())
    throw Failure(ExitStatus::kUsage, "IP must not be empty; see 'networkgrpc routing clear'");
  if (const auto id = SingleId(stream.rx)) return Subscribe(LinkFromJson(ToEntry(stream, *id)));
  return SubscribeSeveral(tool, stream.rx,
                          [&](std::int32_t id, std::size_t) { return ToEntry(stream, id); });
}

void AddSetRaw(Tool& tool, const Command& noun) {
  const auto stream = std::make_shared<Stream>();
  Command raw =
      tool.AddVerb(noun, "set-raw",
                   {"Subscribe receive channels to a stream by its parameters",
                    [&tool, stream] { return SetRaw(tool, *stream); },
                    ShowSubscribed,
                    {"networkgrpc routing set-raw 2 239.69.0.2 --encoding L24 --session-id 7"}});
  AddReceiver(raw, &stream->rx);
  raw.Argument("IP", &stream->ip, "An address of the stream");
  for (std::size_t i = 0; i < stream->values.size(); ++i)
    raw.Option("--value" + std::to_string(i + 2), "N", &stream->values.at(i),
               "Parameter of the stream, passed unchanged");
  raw.Option("--encoding", "NAME", &stream->encoding, "Sample encoding, L24 or L16; default L24")
      .OneOf({"L24", "L16"});
  raw.Option("--sip", "ADDRESS", &stream->sip, "A second address of the stream");
  raw.Option("--session-id", "N", &stream->session_id, "Session identifier of the stream");
  tool.AddYes(raw);
  tool.Undoable(raw, Daemon::kDante);
}

void AddCsv(Tool& tool, const Command& noun) {
  const auto file = std::make_shared<std::string>();
  Command imports = tool.AddVerb(
      noun, "import",
      {"Subscribe receive channels as a table says",
       [&tool, file] { return ImportCsv(tool, *file); },
       [](const Json& result) { return ShowImport(result, kFile); },
       {"networkgrpc routing export --csv - |networkgrpc routing import --csv - --yes"}});
  imports.Option("--csv", "FILE", file.get(), "The table; - for standard input")
      .Required()
      .Offer(Candidates::kFiles);
  tool.AddYes(imports);
  tool.Undoable(imports, Daemon::kDante);
  Command exports = tool.AddVerb(
      noun, "export",
      {"Write the subscriptions as a table",
       [file] { return ExportCsv(*file); },
       [file](const Json& result) { return *file == "-" ? RoutingToCsv(result["routing"]) : ""; },
       {"networkgrpc routing export --csv patch.csv"}});
  exports
      .Option("--csv", "FILE", file.get(),
              "The file, which is replaced as a whole or not at all; - for standard output")
      .Required()
      .Offer(Candidates::kFiles);
}

}  // namespace

void AddRouting(Tool& tool) {
  const Command noun =
      tool.AddNoun("routing", "Show and set what receive channels are subscribed to", "list");
  const auto grid = std::make_shared<bool>(false);
  Command list = tool.AddVerb(
      noun, "list",
      {"Show what each receive channel is subscribed to",
       [] { return ListSubscriptions(ReadRxChannels()); },
       [grid](const Json& result) { return *grid ? ShowGrid(result) : ShowSubscriptions(result); },
       {"networkgrpc routing list", "networkgrpc routing list --grid"}});
  list.Flag("--grid", grid.get(), "Show a grid of receive channels and sources");

  const auto shown = std::make_shared<std::string>();
  Command get = tool.AddVerb(noun, "get",
                             {"Show what some receive channels are subscribed to",
                              [shown] {
                                const auto id = SingleId(*shown);
                                return id ? Get(*id) : GetSeveral(*shown);
                              },
                              ShowRouting,
                              {"networkgrpc routing get 1 --get rx_name"}});
  AddReceiver(get, shown.get());

  struct Arguments {
    std::string rx;
    std::string device;
    std::string channel;
  };
  const auto arguments = std::make_shared<Arguments>();
  Command set = tool.AddVerb(noun, "set",
                             {"Subscribe receive channels to transmit channels",
                              [&tool, arguments] {
                                const auto& [rx, device, channel] = *arguments;
                                const auto id = SingleId(rx);
                                return id ? Subscribe(*id, device, channel)
                                          : SetSeveral(tool, rx, device, channel);
                              },
                              ShowSubscribed,
                              {"networkgrpc routing set 1 'Stage box' 'Mic 1'",
                               "networkgrpc routing set 5-8 'Stage box' 'Mic {1}' --yes"}});
  AddReceiver(set, &arguments->rx);
  set.Argument("DEVICE", &arguments->device, "Name of the transmitting device");
  set.Argument(
      "CHANNEL", &arguments->channel,
      "Name of its transmit channel. For several receive channels, in both names {} stands "
      "for the id of the receive channel, {1} counts from 1, {{ and }} are braces");
  tool.AddYes(set);
  tool.Undoable(set, Daemon::kDante);
  AddSetRaw(tool, noun);

  const auto ids = std::make_shared<std::string>();
  Command clear = tool.AddVerb(noun, "clear",
                               {"Remove the subscriptions of receive channels",
                                [&tool, ids] { return Clear(tool, *ids); },
                                ShowSubscribed,
                                {"networkgrpc routing clear 1"}});
  AddReceiver(clear, ids.get());
  tool.AddYes(clear);
  tool.Undoable(clear, Daemon::kDante);
  AddCsv(tool, noun);
}

}  // namespace tool
