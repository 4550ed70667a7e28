// The modes of the device's network switch.
#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "call_frame/call_frame.h"
#include "network/conversions.h"

namespace nm = ostrevan::networkmanager;
using call_frame::ExceptionLine;

bool NetworkgRPC::GetSwitchModes(std::vector<SwitchMode>& modes) {
  return call_frame::Read(
      {"GetSwitchModes", ExceptionLine::kNameOnly}, &NetworkManagerClient::GetAvailableSwitchModes,
      "libNetworkgRPC: ERROR: error while requesting available switch mode in %s\n",
      [&](const nm::SwitchModes& reply) {
        modes.reserve(modes.size() + static_cast<std::size_t>(reply.modes_size()));
        for (const auto& mode : reply.modes()) modes.push_back(network::ToRecord(mode));
      });
}

bool NetworkgRPC::GetConfiguredSwitchMode(SwitchMode& mode) {
  return call_frame::Read(
      {"GetConfiguredSwitchMode", ExceptionLine::kNameOnly},
      &NetworkManagerClient::GetConfiguredSwitchMode,
      "libNetworkgRPC: ERROR: error while requesting current switch mode in %s\n",
      [&](const nm::SwitchMode& reply) { mode = network::ToRecord(reply); });
}

bool NetworkgRPC::GetCurrentSwitchMode(SwitchMode& mode) {
  return call_frame::Read(
      {"GetCurrentSwitchMode", ExceptionLine::kNameOnly},
      &NetworkManagerClient::GetCurrentSwitchMode,
      "libNetworkgRPC: ERROR: error while requesting current switch mode in %s\n",
      [&](const nm::SwitchMode& reply) { mode = network::ToRecord(reply); });
}

// Callers pass the id plus one. The subtraction is unsigned because INT_MIN - 1
// would overflow.
bool NetworkgRPC::SetSwitchMode(int mode) {
  return call_frame::Change(
      {"SetSwitchMode", ExceptionLine::kNameAndText}, &NetworkManagerClient::SetSwitchMode,
      "libNetworkgRPC: ERROR: error while setting dante switch mode in %s\n", [&](nm::Id& request) {
        request.set_id(static_cast<std::int32_t>(static_cast<std::uint32_t>(mode) - 1U));
      });
}
