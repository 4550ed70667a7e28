// networkgrpc routing: what each receive channel is subscribed to.
#include <algorithm>
#include <array>
#include <memory>

#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/routing_json.h"
#include "tools/tool.h"

namespace tool {
namespace {

using Link = dapi::LinkInfo;

Json List() {
  Json routing = Json::array();
  const auto channels = ReadRxChannels();
  for (const Link& link : ReadRouting(channels)) {
    Json entry = ToJson(link);
    entry["rx_name"] = FindById(channels.channels(), link.id())->name();
    routing.push_back(entry);
  }
  return {{"routing", routing}};
}

std::string ShowList(const Json& result) {
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

// One row per receive channel, one column per source; the names of the sources,
// which can be long, follow in a table of their own.
std::string ShowGrid(const Json& result) {
  std::vector<std::string> sources;
  for (const Json& it : result["routing"]) {
    const std::string source = SourceText(it);
    if (!source.empty() && std::find(sources.begin(), sources.end(), source) == sources.end())
      sources.push_back(source);
  }
  terminal::Table::Row headings = {"RX", "NAME"};
  for (std::size_t i = 0; i < sources.size(); ++i) headings.push_back(std::to_string(i + 1));
  terminal::Table grid(headings);
  for (const Json& it : result["routing"]) {
    terminal::Table::Row row = {it["rx_channel"].dump(), it["rx_name"]};
    for (const std::string& source : sources) row.push_back(source == SourceText(it) ? "x" : ".");
    grid.Add(row);
  }
  if (sources.empty()) return grid.Text();
  terminal::Table legend({"", "SOURCE"});
  for (std::size_t i = 0; i < sources.size(); ++i) legend.Add({std::to_string(i + 1), sources[i]});
  return grid.Text() + "\n" + legend.Text();
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

// An empty name would remove the subscription.
Json Set(int rx, const std::string& device, const std::string& channel) {
  if (device.empty() || channel.empty())
    throw Failure(ExitStatus::kUsage,
                  "DEVICE and CHANNEL must not be empty; see 'networkgrpc routing clear'");
  Link link = Unsubscribed(rx);
  link.set_devicename(device);
  link.set_channelname(channel);
  return Subscribe(link);
}

void AddReceiver(Tool& tool, Command& verb, int* id) {
  tool.Undoable(verb, Daemon::kDante);
  verb.Argument("RX", id, "The receive channel's id in 'channel list'")
      .Offer(Candidates::kRxChannels);
}

// The parameters of a stream as an entry of "raw" in a state document.
struct Stream {
  int rx = 0;
  std::string ip;
  std::array<std::uint32_t, 5> values{};  // value2 to value6
  std::string encoding = "L24";
  std::string sip;
  std::optional<std::uint64_t> session_id;
};

Json SetRaw(const Stream& stream) {
  if (stream.ip.empty())
    throw Failure(ExitStatus::kUsage, "IP must not be empty; see 'networkgrpc routing clear'");
  Json entry = ToJson(Unsubscribed(stream.rx));
  Json& raw = entry["raw"] = {{"ip", stream.ip},
                              {"encoding", stream.encoding},
                              {"sip", stream.sip},
                              {"session_id", nullptr}};
  for (std::size_t i = 0; i < stream.values.size(); ++i)
    raw["value" + std::to_string(i + 2)] = stream.values.at(i);
  if (stream.session_id) raw["session_id"] = *stream.session_id;
  return Subscribe(LinkFromJson(entry));
}

void AddSetRaw(Tool& tool, const Command& noun) {
  const auto stream = std::make_shared<Stream>();
  Command raw =
      tool.AddVerb(noun, "set-raw",
                   {"Subscribe a receive channel to a stream by its parameters",
                    [stream] { return SetRaw(*stream); },
                    ShowSubscription,
                    {"networkgrpc routing set-raw 2 239.69.0.2 --encoding L24 --session-id 7"}});
  AddReceiver(tool, raw, &stream->rx);
  raw.Argument("IP", &stream->ip, "An address of the stream");
  for (std::size_t i = 0; i < stream->values.size(); ++i)
    raw.Option("--value" + std::to_string(i + 2), "N", &stream->values.at(i),
               "Parameter of the stream, passed unchanged");
  raw.Option("--encoding", "NAME", &stream->encoding, "Sample encoding, L24 or L16; default L24")
      .OneOf({"L24", "L16"});
  raw.Option("--sip", "ADDRESS", &stream->sip, "A second address of the stream");
  raw.Option("--session-id", "N", &stream->session_id, "Session identifier of the stream");
}

}  // namespace

void AddRouting(Tool& tool) {
  const Command noun =
      tool.AddNoun("routing", "Show and set what receive channels are subscribed to", "list");
  const auto grid = std::make_shared<bool>(false);
  Command list = tool.AddVerb(
      noun, "list",
      {"Show what each receive channel is subscribed to",
       List,
       [grid](const Json& result) { return *grid ? ShowGrid(result) : ShowList(result); },
       {"networkgrpc routing list", "networkgrpc routing list --grid"}});
  list.Flag("--grid", grid.get(), "Show a grid of receive channels and sources");

  struct Arguments {
    int rx = 0;
    std::string device;
    std::string channel;
  };
  const auto arguments = std::make_shared<Arguments>();
  Command set = tool.AddVerb(
      noun, "set",
      {"Subscribe a receive channel to a transmit channel",
       [arguments] { return Set(arguments->rx, arguments->device, arguments->channel); },
       ShowSubscription,
       {"networkgrpc routing set 1 'Stage box' 'Mic 1'"}});
  AddReceiver(tool, set, &arguments->rx);
  set.Argument("DEVICE", &arguments->device, "Name of the transmitting device");
  set.Argument("CHANNEL", &arguments->channel, "Name of its transmit channel");
  AddSetRaw(tool, noun);

  const auto id = std::make_shared<int>(0);
  Command clear = tool.AddVerb(noun, "clear",
                               {"Remove the subscription of a receive channel",
                                [id] { return Subscribe(Unsubscribed(*id)); },
                                ShowSubscription,
                                {"networkgrpc routing clear 1"}});
  AddReceiver(tool, clear, id.get());
}

}  // namespace tool
