// networkgrpc status: all at a glance.
#include <array>
#include <optional>

#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante_settings.h"
#include "tools/host.h"
#include "tools/interfaces.h"
#include "tools/tool.h"

namespace tool {
namespace {

Json CurrentSwitchMode() {
  int id = 0;
  Do(Daemon::kNetworkManager, "read the switch mode in effect",
     [&] { return cGetCurrentSwitchMode(&id) == 0; });
  std::vector<NetworkgRPC::SwitchMode> modes;
  Do(Daemon::kNetworkManager, "list the switch modes",
     [&] { return NetworkgRPC::GetSwitchModes(modes); });
  for (const auto& mode : modes)
    if (mode.id == id) return {{"id", id}, {"name", mode.name}};
  return {{"id", id}, {"name", ""}};
}

// Null when there is no such interface.
Json Control() {
  std::array<cInterfaceInfo, 1> control{};
  if (cGetControlInterface(control.data(), control.size()) != 1) return nullptr;
  return {{"ip", control[0].ip}, {"netmask", control[0].netmask}, {"mac", control[0].mac}};
}

Json Network() {
  Json interfaces = Json::array();
  const std::string hostname = ReadHostname();
  for (const auto& interface : AllInterfaces()) interfaces.push_back(ToJson(interface));
  return {{"hostname", hostname},    {"control", Control()}, {"switch_mode", CurrentSwitchMode()},
          {"ntp", ReadNtpServer()},  {"dns", ReadDns()},     {"gateway", ReadGateway()},
          {"interfaces", interfaces}};
}

Json Dante() {
  const std::string name = ReadDeviceName();
  const auto tx = ReadTxChannels();
  std::size_t subscribed = 0;
  const auto links = ReadRouting();
  for (const auto& link : links) subscribed += link.isRaw || !link.deviceName.empty() ? 1U : 0U;
  return {{"name", name},
          {"sample_rate", ReadSampleRate()},
          {"latency", ReadLatency()},
          {"aes67", ReadAes67()},
          {"transmit", !ReadTransmitDisabled()},
          {"ptp_slave_only", ReadPtpSlaveOnly()},
          {"tx_channels", tx.size()},
          {"rx_channels", links.size()},
          {"subscribed", subscribed}};
}

// What one daemon does not tell must not hide what the other does.
Json Part(Json (*read)(), std::optional<Failure>& first) {
  try {
    return read();
  } catch (const Failure& failure) {
    if (!first.has_value()) first = failure;
    return nullptr;
  }
}

Json Run() {
  std::optional<Failure> failure;
  const Json network = Part(Network, failure);
  const Json dante = Part(Dante, failure);
  const Json result = {{"network", network}, {"dante", dante}};
  if (failure.has_value()) throw failure->With(result);
  return result;
}

// --- Text ----------------------------------------------------------------------

std::string OnOff(const Json& value) { return value ? "on" : "off"; }

std::string ShowNetwork(const Json& network) {
  if (network.is_null()) return "not known\n";
  terminal::Table table;
  const Json& mode = network["switch_mode"];
  table.Add({"hostname", network["hostname"]});
  table.Add({"switch mode", mode["id"].dump() + " " + mode["name"].get<std::string>()});
  for (const char* member : {"ntp", "dns", "gateway"}) table.Add({member, network[member]});
  return table.Text() + "\n" + ShowInterfaces(network["interfaces"]);
}

std::string ShowDante(const Json& dante) {
  if (dante.is_null()) return "not known\n";
  terminal::Table table;
  table.Add({"name", dante["name"]});
  table.Add({"sample rate", dante["sample_rate"].dump()});
  table.Add({"latency", dante["latency"].dump()});
  table.Add({"AES67", OnOff(dante["aes67"])});
  table.Add({"transmit", OnOff(dante["transmit"])});
  table.Add({"PTP slave only", OnOff(dante["ptp_slave_only"])});
  table.Add({"channels", dante["tx_channels"].dump() + " transmit, " + dante["rx_channels"].dump() +
                             " receive, " + dante["subscribed"].dump() + " subscribed"});
  return table.Text();
}

std::string Show(const Json& result) {
  return terminal::Bold("Network") + "\n" + ShowNetwork(result["network"]) + "\n" +
         terminal::Bold("Dante") + "\n" + ShowDante(result["dante"]);
}

}  // namespace

void AddStatus(Tool& tool) {
  tool.AddVerb(tool.app, "status",
               {"Tells everything at a glance.", Run, Show, {"networkgrpc status"}});
}

}  // namespace tool
