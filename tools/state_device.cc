// Reads the state of the device as a document.
#include "NetworkManagerClient.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/routing_json.h"
#include "tools/state.h"

namespace tool {
namespace {

constexpr auto kNetworkManager = Daemon::kNetworkManager;

template <class List>
Json Strings(const List& list) {
  Json strings = Json::array();
  for (const std::string& string : list) strings.push_back(string);
  return strings;
}

// All servers: the library's function returns the first only.
Json NtpServers() {
  ostrevan::networkmanager::NTPServer reply;
  Do(kNetworkManager, "read the NTP servers",
     [&] { return NetworkManagerClient::GetInstance().GetNTPServer(&reply).ok(); });
  return Strings(reply.servers());
}

Json Interfaces() {
  Json interfaces = Json::array();
  for (const auto& interface : AllInterfaces()) {
    const auto stored = StoredConfiguration(interface.id);
    interfaces.push_back({{"name", interface.name},
                          {"mode", ModeToJson(stored.mode())},
                          {"ip", stored.ip()},
                          {"netmask", stored.netmask()},
                          {"gateway", stored.gateway()},
                          {"dns", Strings(stored.dns())}});
  }
  return interfaces;
}

Json Network() {
  const std::string hostname = ReadHostname();
  const Json ntp = NtpServers();
  const auto mode = Get<NetworkgRPC::SwitchMode>(kNetworkManager, "read the stored switch mode",
                                                 NetworkgRPC::GetConfiguredSwitchMode);
  return {
      {"hostname", hostname}, {"ntp", ntp}, {"switch_mode", mode.id}, {"interfaces", Interfaces()}};
}

Json Dante() {
  Json dante = {{"name", ReadDeviceName()},
                {"sample_rate", ReadSampleRate()},
                {"latency", ReadLatency()},
                {"aes67", ReadAes67()},
                {"transmit_disabled", ReadTransmitDisabled()},
                {"ptp_slave_only", ReadPtpSlaveOnly()},
                {"tx_channels", Json::array()},
                {"routing", Json::array()}};
  for (const auto& channel : ReadTxChannels())
    dante["tx_channels"].push_back({{"id", channel.id}, {"name", channel.name}});
  for (const auto& link : ReadRouting()) dante["routing"].push_back(ToJson(link));
  return dante;
}

}  // namespace

Json ReadState() { return {{"schema", 1}, {"network", Network()}, {"dante", Dante()}}; }

}  // namespace tool
