// networkgrpc status: a summary of all settings.
#include <array>
#include <optional>

#include "NetworkgRPC_c.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/tool.h"

namespace tool {
namespace {

Json CurrentSwitchMode() {
  int id = 0;
  Do(Daemon::kNetworkManager, "read the switch mode in effect",
     [&] { return cGetCurrentSwitchMode(&id) == 0; });
  const auto modes = Get<std::vector<NetworkgRPC::SwitchMode>>(
      Daemon::kNetworkManager, "list the switch modes", NetworkgRPC::GetSwitchModes);
  const auto* mode = FindById(modes, id);
  return {{"id", id}, {"name", mode != nullptr ? mode->name : ""}};
}

// Null if it cannot be read, also if there is no such interface.
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

// If one daemon fails, the settings of the other are shown nevertheless.
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

std::string ShowNetwork(const Json& network) {
  if (network.is_null()) return "unknown\n";
  terminal::Table table;
  const Json& mode = network["switch_mode"];
  table.Add({"hostname", network["hostname"]});
  table.Add({"switch mode", Text(mode["id"]) + " " + Text(mode["name"])});
  for (const char* member : {"ntp", "dns", "gateway"}) table.Add({member, network[member]});
  return table.Text() + "\n" + ShowInterfaces(network["interfaces"]);
}

std::string ShowDante(const Json& dante) {
  if (dante.is_null()) return "unknown\n";
  terminal::Table table;
  table.Add({"name", dante["name"]});
  table.Add({"sample rate", Text(dante["sample_rate"])});
  table.Add({"latency", Text(dante["latency"])});
  table.Add({"AES67", OnOff(dante["aes67"])});
  table.Add({"transmit", OnOff(dante["transmit"])});
  table.Add({"PTP slave only", OnOff(dante["ptp_slave_only"])});
  table.Add({"channels", Text(dante["tx_channels"]) + " transmit, " + Text(dante["rx_channels"]) +
                             " receive, " + Text(dante["subscribed"]) + " subscribed"});
  return table.Text();
}

std::string Show(const Json& result) {
  return terminal::Bold("Network") + "\n" + ShowNetwork(result["network"]) + "\n" +
         terminal::Bold("Dante") + "\n" + ShowDante(result["dante"]);
}

}  // namespace

void AddStatus(Tool& tool) {
  tool.AddVerb(tool.app, "status",
               {"Show a summary of all settings", Run, Show, {"networkgrpc status"}});
}

}  // namespace tool
