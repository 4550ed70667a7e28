// networkgrpc routing: what each receive channel is subscribed to.
#include <algorithm>

#include "DantegRPC.h"
#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/routing_json.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kDante;
using Link = DantegRPC::ChannelLink;

Json List() {
  Json routing = Json::array();
  const auto channels = ReadRxChannels();
  for (const Link& link : ReadRouting()) {
    Json entry = ToJson(link);
    const auto* channel = FindById(channels, link.rxChannelId);
    entry["rx_name"] = channel != nullptr ? channel->name : "";
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
  const int id = link.rxChannelId;
  DoTo(ListedBy(DantegRPC::GetRxChannels, id, "channel list"), kDaemon,
       "set the subscription of receive channel " + std::to_string(id),
       [&] { return DantegRPC::SetTapping(link); });
  return ToJson(link);
}

std::string ShowSubscription(const Json& result) {
  const std::string source = SourceText(result);
  const std::string channel = "receive channel " + Text(result["rx_channel"]);
  return channel +
         (source.empty() ? " is not subscribed\n" : " is subscribed to " + Text(source) + "\n");
}

Json Set(const Link& link) {
  // The library would remove the subscription.
  if (link.deviceName.empty() || link.channelName.empty())
    throw Failure(ExitStatus::kUsage, "DEVICE and CHANNEL must not be empty; see 'routing clear'");
  return Subscribe(link);
}

Json SetRaw(Link link) {
  if (link.ip.empty())
    throw Failure(ExitStatus::kUsage, "IP must not be empty; see 'routing clear'");
  link.isRaw = true;
  return Subscribe(link);
}

void AddReceiver(Tool& tool, CLI::App& verb, int& id) {
  tool.Offer(terminal::AddInteger(verb, "RX", id, "The receive channel's id in 'channel list'")
                 ->required(),
             Candidates::kRxChannels);
}

void AddSetRaw(Tool& tool, CLI::App& noun) {
  const auto link = std::make_shared<Link>();
  const auto encoding = std::make_shared<std::string>("L24");
  const auto session = std::make_shared<CLI::Option*>(nullptr);
  CLI::App& raw =
      tool.AddVerb(noun, "set-raw",
                   {"Subscribe a receive channel to a stream by its parameters",
                    [link, encoding, session] {
                      link->encoding = *encoding == "L16" ? 1 : 0;
                      link->hasSessionId = (*session)->count() != 0;
                      return SetRaw(*link);
                    },
                    ShowSubscription,
                    {"networkgrpc routing set-raw 2 239.69.0.2 --encoding L24 --session-id 7"}});
  AddReceiver(tool, raw, link->rxChannelId);
  raw.add_option("IP", link->ip, "An address of the stream")->required();
  const std::vector<std::pair<const char*, std::uint32_t*>> values = {{"--value2", &link->value2},
                                                                      {"--value3", &link->value3},
                                                                      {"--value4", &link->value4},
                                                                      {"--value5", &link->value5},
                                                                      {"--value6", &link->value6}};
  for (const auto& [name, value] : values)
    terminal::AddInteger(raw, name, *value, "Parameter of the stream, passed unchanged")
        ->type_name("N");
  raw.add_option("--encoding", *encoding, "Sample encoding, L24 or L16; default L24")
      ->type_name("NAME")
      ->check(terminal::OneOf({"L24", "L16"}));
  raw.add_option("--sip", link->sip, "A second address of the stream")->type_name("ADDRESS");
  *session =
      terminal::AddInteger(raw, "--session-id", link->sessionId, "Session identifier of the stream")
          ->type_name("N");
}

}  // namespace

void AddRouting(Tool& tool) {
  CLI::App& noun =
      tool.AddNoun("routing", "Show and set what receive channels are subscribed to", "list");
  const auto grid = std::make_shared<bool>(false);
  CLI::App& list = tool.AddVerb(
      noun, "list",
      {"Show what each receive channel is subscribed to",
       List,
       [grid](const Json& result) { return *grid ? ShowGrid(result) : ShowList(result); },
       {"networkgrpc routing list", "networkgrpc routing list --grid"}});
  list.add_flag("--grid", *grid, "Show a grid of receive channels and sources");

  const auto link = std::make_shared<Link>();
  CLI::App& set = tool.AddVerb(noun, "set",
                               {"Subscribe a receive channel to a transmit channel",
                                [link] { return Set(*link); },
                                ShowSubscription,
                                {"networkgrpc routing set 1 'Stage box' 'Mic 1'"}});
  AddReceiver(tool, set, link->rxChannelId);
  set.add_option("DEVICE", link->deviceName, "Name of the transmitting device")->required();
  set.add_option("CHANNEL", link->channelName, "Name of its transmit channel")->required();
  AddSetRaw(tool, noun);

  const auto id = std::make_shared<int>(0);
  CLI::App& clear = tool.AddVerb(noun, "clear",
                                 {"Remove the subscription of a receive channel",
                                  [id] { return Subscribe(Unsubscribed(*id)); },
                                  ShowSubscription,
                                  {"networkgrpc routing clear 1"}});
  AddReceiver(tool, clear, *id);
}

}  // namespace tool
