#include "tools/dante_settings.h"

#include "tools/call.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kDante;

}  // namespace

std::string ReadDeviceName() {
  return Get<std::string>(kDaemon, "read the device name", DantegRPC::GetName);
}

std::uint32_t ReadSampleRate() {
  return static_cast<std::uint32_t>(
      Get<int>(kDaemon, "read the sample rate", DantegRPC::GetSampleRate));
}

std::vector<std::uint32_t> ReadSampleRates() {
  const auto rates =
      Get<std::vector<int>>(kDaemon, "list the sample rates", DantegRPC::GetAvailableSampleRates);
  return {rates.begin(), rates.end()};
}

std::uint32_t ReadLatency() {
  return static_cast<std::uint32_t>(Get<int>(kDaemon, "read the latency", DantegRPC::GetLatency));
}

bool ReadAes67() {
  return Get<bool>(kDaemon, "read whether AES67 is on", DantegRPC::GetAES67Status);
}

bool ReadTransmitDisabled() {
  return Get<bool>(kDaemon, "read whether transmission is disabled", DantegRPC::GetDisableTx);
}

bool ReadPtpSlaveOnly() {
  return Get<bool>(kDaemon, "read whether the module is a PTP slave only",
                   DantegRPC::GetPtpSlaveOnly);
}

std::vector<DantegRPC::Channel> ReadTxChannels() {
  return Get<std::vector<DantegRPC::Channel>>(kDaemon, "list the transmit channels",
                                              DantegRPC::GetTxChannels);
}

std::vector<DantegRPC::Channel> ReadRxChannels() {
  return Get<std::vector<DantegRPC::Channel>>(kDaemon, "list the receive channels",
                                              DantegRPC::GetRxChannels);
}

std::vector<DantegRPC::ChannelLink> ReadRouting() {
  return Get<std::vector<DantegRPC::ChannelLink>>(kDaemon, "read the routing",
                                                  DantegRPC::GetTapping);
}

}  // namespace tool
