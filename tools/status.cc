// networkgrpc status: a summary of all settings.
#include <algorithm>
#include <optional>

#include "terminal/table.h"
#include "tools/call.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/routing_json.h"
#include "tools/switch.h"

namespace tool {
namespace {

Json ModeJson(const nm::SwitchMode& mode) { return {{"id", mode.id()}, {"name", mode.name()}}; }

Json SwitchMode() {
  const auto stored = ReadStoredSwitchMode();
  const auto in_effect = ReadSwitchModeInEffect();
  return {{"stored", ModeJson(stored)},
          {"in_effect", ModeJson(in_effect)},
          {"pending", stored.id() != in_effect.id()}};
}

// Whether the stored NTP servers are in effect is not known: daemons do not report it.
Json NetworkSummary() {
  Json interfaces = Json::array();
  const std::string hostname = ReadHostname();
  for (const auto& interface : ReadInterfaces()) interfaces.push_back(ToJson(interface));
  return {{"hostname", hostname},
          {"switch_mode", SwitchMode()},
          {"ntp", {{"stored", ReadNtpServers()}, {"pending", nullptr}}},
          {"dns", ReadDnsServers()},
          {"gateway", ReadGateway()},
          {"interfaces", interfaces}};
}

Json DanteSummary() {
  const std::string name = ReadDeviceName();
  const auto tx = ReadTxChannels();
  const auto links = ReadRouting(ReadRxChannels());
  const auto subscribed = std::count_if(links.begin(), links.end(), [](const auto& link) {
    return !SourceText(ToJson(link)).empty();
  });
  return {{"name", name},
          {"sample_rate", ReadSampleRate()},
          {"latency", ReadLatency()},
          {"aes67", ReadAes67()},
          {"transmit", !ReadTransmitDisabled()},
          {"ptp", ReadPtp()},
          {"tx_channels", tx.channels_size()},
          {"rx_channels", links.size()},
          {"subscribed", subscribed}};
}

// If one daemon fails, the settings of the other are shown nevertheless.
Json PartOrNull(Json (*read)(), std::optional<Failure>& first) {
  try {
    return read();
  } catch (const Failure& failure) {
    if (!first.has_value()) first = failure;
    return nullptr;
  }
}

Json ReadStatus() {
  std::optional<Failure> failure;
  const Json network = PartOrNull(NetworkSummary, failure);
  const Json dante = PartOrNull(DanteSummary, failure);
  const Json result = {{"network", network}, {"dante", dante}};
  if (failure.has_value()) throw failure->With(result);
  return result;
}

// --- Text ----------------------------------------------------------------------

std::string ModeText(const Json& mode) {
  const auto text = [](const Json& it) { return Text(it["id"]) + " " + Text(it["name"]); };
  return text(mode["in_effect"]) +
         (mode["pending"] ? "; pending: " + text(mode["stored"]) : std::string());
}

std::string ShowNetwork(const Json& network) {
  if (network.is_null()) return "not known\n";
  terminal::Table table;
  table.Add({"hostname", network["hostname"]});
  table.Add({"switch mode", ModeText(network["switch_mode"])});
  table.Add({"ntp, stored", Joined(network["ntp"]["stored"])});
  table.Add({"dns", Joined(network["dns"])});
  table.Add({"gateway", network["gateway"]});
  return table.Text() + "\n" + ShowInterfaces(network["interfaces"]);
}

std::string ShowDante(const Json& dante) {
  if (dante.is_null()) return "not known\n";
  terminal::Table table;
  table.Add({"name", dante["name"]});
  table.Add({"sample rate", Text(dante["sample_rate"])});
  table.Add({"latency", Text(dante["latency"])});
  table.Add({"AES67", OnOff(dante["aes67"])});
  table.Add({"transmit", OnOff(dante["transmit"])});
  table.Add({"PTP clock", TextOrUnknown(dante["ptp"]["clock"]) +
                              (dante["ptp"]["slave_only"] ? ", slave only" : "")});
  table.Add({"channels", Text(dante["tx_channels"]) + " transmit, " + Text(dante["rx_channels"]) +
                             " receive, " + Text(dante["subscribed"]) + " subscribed"});
  return table.Text();
}

std::string ShowStatus(const Json& result) {
  return terminal::Bold("Network") + "\n" + ShowNetwork(result["network"]) + "\n" +
         terminal::Bold("Dante") + "\n" + ShowDante(result["dante"]);
}

}  // namespace

void AddStatus(Tool& tool) {
  tool.AddVerb(tool.Top(), "status",
               {"Show a summary of all settings", ReadStatus, ShowStatus, {"networkgrpc status"}});
}

}  // namespace tool
