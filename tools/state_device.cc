// Reads the state of the device as a document.
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/routing_json.h"
#include "tools/state.h"
#include "tools/switch.h"

namespace tool {
namespace {

Json StoredInterfaces() {
  Json interfaces = Json::array();
  for (const Interface& interface : ReadInterfaces()) {
    if (!interface.stored.has_value())
      throw Failure(
          ExitStatus::kFailed,
          "the daemon reports no stored configuration of interface '" + interface.name + "'",
          Daemon::kNetworkManager);
    Json entry = {{"name", interface.name}};
    entry.update(ToJson(*interface.stored));
    interfaces.push_back(entry);
  }
  return interfaces;
}

}  // namespace

Json ReadNetworkState() {
  Json network = {{"hostname", ReadHostname()},
                  {"ntp", ReadNtpServers()},
                  {"switch_mode", ReadStoredSwitchMode().id()}};
  network["interfaces"] = StoredInterfaces();
  return network;
}

Json ReadDanteState() {
  Json dante = {{"name", ReadDeviceName()},
                {"sample_rate", ReadSampleRate()},
                {"latency", ReadLatency()},
                {"aes67", ReadAes67()},
                {"transmit_disabled", ReadTransmitDisabled()},
                {"ptp_slave_only", ReadPtpSlaveOnly()},
                {"tx_channels", ToJson(ReadTxChannels())},
                {"rx_channels", nullptr},
                {"routing", Json::array()}};
  const auto receivers = ReadRxChannels();
  dante["rx_channels"] = ToJson(receivers);
  for (const auto& link : ReadRouting(receivers)) dante["routing"].push_back(ToJson(link));
  return dante;
}

Json ReadState() {
  Json network = ReadNetworkState();
  return {{"schema", 1}, {"network", std::move(network)}, {"dante", ReadDanteState()}};
}

}  // namespace tool
