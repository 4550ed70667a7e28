// The RPCs of both daemons, by the methods of the generated stubs.
#pragma once

#include <grpcpp/client_context.h>
#include <grpcpp/support/status.h>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"
#include "tools/daemon.h"

namespace tool {

namespace nm = ostrevan::networkmanager;
namespace dapi = ostrevan::grpcdapi;

template <class Stub, class Request, class Reply>
struct Rpc {
  using Method = grpc::Status (Stub::*)(grpc::ClientContext*, const Request&, Reply*);

  constexpr Rpc(const char* called, Method of_stub) : name(called), method(of_stub) {}

  const char* name;
  Method method;
};

template <class Stub>
inline constexpr Daemon kDaemonOf = Daemon::kNone;
template <>
inline constexpr Daemon kDaemonOf<nm::NetworkManager::Stub> = Daemon::kNetworkManager;
template <>
inline constexpr Daemon kDaemonOf<dapi::DAPI::Stub> = Daemon::kDante;

namespace rpc {

using NetworkManager = nm::NetworkManager::Stub;
inline constexpr Rpc kGetAvailableInterfaces{"GetAvailableInterfaces",
                                             &NetworkManager::GetAvailableInterfaces};
inline constexpr Rpc kGetNetworkConfig{"GetNetworkConfig", &NetworkManager::GetNetworkConfig};
inline constexpr Rpc kSetNetworkConfig{"SetNetworkConfig", &NetworkManager::SetNetworkConfig};
inline constexpr Rpc kGetNetworkStatus{"GetNetworkStatus", &NetworkManager::GetNetworkStatus};
inline constexpr Rpc kGetAvailableSwitchModes{"GetAvailableSwitchModes",
                                              &NetworkManager::GetAvailableSwitchModes};
inline constexpr Rpc kGetSwitchMode{"GetSwitchMode", &NetworkManager::GetSwitchMode};
inline constexpr Rpc kGetSwitchModeStatus{"GetSwitchModeStatus",
                                          &NetworkManager::GetSwitchModeStatus};
inline constexpr Rpc kSetSwitchMode{"SetSwitchMode", &NetworkManager::SetSwitchMode};
inline constexpr Rpc kGetHostname{"GetHostname", &NetworkManager::GetHostname};
inline constexpr Rpc kSetHostname{"SetHostname", &NetworkManager::SetHostname};
inline constexpr Rpc kGetNTPServer{"GetNTPServer", &NetworkManager::GetNTPServer};
inline constexpr Rpc kSetNTPServer{"SetNTPServer", &NetworkManager::SetNTPServer};
inline constexpr Rpc kReloadNetworkConfig{"ReloadNetworkConfig",
                                          &NetworkManager::ReloadNetworkConfig};
inline constexpr Rpc kGetRouting{"GetRouting", &NetworkManager::GetRouting};
inline constexpr Rpc kGetDNSList{"GetDNSList", &NetworkManager::GetDNSList};
inline constexpr Rpc kReloadNTPConfig{"ReloadNTPConfig", &NetworkManager::ReloadNTPConfig};
inline constexpr Rpc kFactoryReset{"FactoryReset", &NetworkManager::FactoryReset};
inline constexpr Rpc kGetRoutingForInterface{"GetRoutingForInterface",
                                             &NetworkManager::GetRoutingForInterface};

using Dapi = dapi::DAPI::Stub;
inline constexpr Rpc kGetName{"GetName", &Dapi::GetName};
inline constexpr Rpc kSetName{"SetName", &Dapi::SetName};
inline constexpr Rpc kGetTxChannels{"GetTxChannels", &Dapi::GetTxChannels};
inline constexpr Rpc kGetRxChannels{"GetRxChannels", &Dapi::GetRxChannels};
inline constexpr Rpc kSetTxChannelName{"SetTxChannelName", &Dapi::SetTxChannelName};
inline constexpr Rpc kSetRxChannelName{"SetRxChannelName", &Dapi::SetRxChannelName};
inline constexpr Rpc kGetRxChannelLink{"GetRxChannelLink", &Dapi::GetRxChannelLink};
inline constexpr Rpc kSetRxChannelLink{"SetRxChannelLink", &Dapi::SetRxChannelLink};
inline constexpr Rpc kGetLatency{"GetLatency", &Dapi::GetLatency};
inline constexpr Rpc kGetMinLatency{"GetMinLatency", &Dapi::GetMinLatency};
inline constexpr Rpc kSetLatency{"SetLatency", &Dapi::SetLatency};
inline constexpr Rpc kGetSoftwareVersion{"GetSoftwareVersion", &Dapi::GetSoftwareVersion};
inline constexpr Rpc kGetFirmwareVersion{"GetFirmwareVersion", &Dapi::GetFirmwareVersion};
inline constexpr Rpc kGetAvailableSampleRates{"GetAvailableSampleRates",
                                              &Dapi::GetAvailableSampleRates};
inline constexpr Rpc kGetSampleRate{"GetSampleRate", &Dapi::GetSampleRate};
inline constexpr Rpc kSetSampleRate{"SetSampleRate", &Dapi::SetSampleRate};
inline constexpr Rpc kGetIsAES67Available{"GetIsAES67Available", &Dapi::GetIsAES67Available};
inline constexpr Rpc kGetAES67Status{"GetAES67Status", &Dapi::GetAES67Status};
inline constexpr Rpc kSetAES67Status{"SetAES67Status", &Dapi::SetAES67Status};
inline constexpr Rpc kGetManufacturerName{"GetManufacturerName", &Dapi::GetManufacturerName};
inline constexpr Rpc kGetModelName{"GetModelName", &Dapi::GetModelName};
inline constexpr Rpc kGetModelVersion{"GetModelVersion", &Dapi::GetModelVersion};
inline constexpr Rpc kGetPtpConfig{"GetPtpConfig", &Dapi::GetPtpConfig};
inline constexpr Rpc kGetPtpStatus{"GetPtpStatus", &Dapi::GetPtpStatus};
inline constexpr Rpc kReconnect{"Reconnect", &Dapi::Reconnect};
inline constexpr Rpc kGetDisableTxStatus{"GetDisableTxStatus", &Dapi::GetDisableTxStatus};
inline constexpr Rpc kSetDisableTxStatus{"SetDisableTxStatus", &Dapi::SetDisableTxStatus};
inline constexpr Rpc kGetPtpSlaveOnlyStatus{"GetPtpSlaveOnlyStatus", &Dapi::GetPtpSlaveOnlyStatus};
inline constexpr Rpc kSetPtpSlaveOnlyStatus{"SetPtpSlaveOnlyStatus", &Dapi::SetPtpSlaveOnlyStatus};

}  // namespace rpc

}  // namespace tool
