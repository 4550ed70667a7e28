#include "simulator/methods.h"

#include <algorithm>
#include <type_traits>

#include "simulator/dante_service.h"
#include "simulator/network_service.h"
#include "simulator/request_json.h"

namespace simulator {
namespace {

template <class Service, class Request, class Reply>
Method Describe(const std::string& name,
                grpc::Status (Service::*method)(grpc::ServerContext*, const Request*, Reply*)) {
  constexpr bool kSuccess = std::is_same_v<Reply, ostrevan::networkmanager::Success> ||
                            std::is_same_v<Reply, ostrevan::grpcdapi::Success>;
  return {name, kSuccess,
          [method](grpc::Service& service, const std::string& bytes, std::string& answer) {
            Request request;
            if (!request.ParseFromString(bytes))
              return grpc::Status(grpc::StatusCode::INTERNAL, "malformed request");
            Reply reply;
            // The methods answer from the model alone, without the call's context.
            const grpc::Status status =
                (static_cast<Service&>(service).*method)(nullptr, &request, &reply);
            if (status.ok()) reply.SerializeToString(&answer);
            return status;
          },
          [](const std::string& bytes) {
            Request request;
            return request.ParseFromString(bytes) ? ToJson(request) : Json(nullptr);
          }};
}

std::vector<Method> NetworkMethods() {
  using S = NetworkService;
  return {Describe("GetAvailableInterfaces", &S::GetAvailableInterfaces),
          Describe("GetNetworkConfig", &S::GetNetworkConfig),
          Describe("SetNetworkConfig", &S::SetNetworkConfig),
          Describe("GetNetworkStatus", &S::GetNetworkStatus),
          Describe("GetAvailableSwitchModes", &S::GetAvailableSwitchModes),
          Describe("GetSwitchMode", &S::GetSwitchMode),
          Describe("GetSwitchModeStatus", &S::GetSwitchModeStatus),
          Describe("SetSwitchMode", &S::SetSwitchMode),
          Describe("GetHostname", &S::GetHostname),
          Describe("SetHostname", &S::SetHostname),
          Describe("GetNTPServer", &S::GetNTPServer),
          Describe("SetNTPServer", &S::SetNTPServer),
          Describe("ReloadNetworkConfig", &S::ReloadNetworkConfig),
          Describe("GetRouting", &S::GetRouting),
          Describe("GetDNSList", &S::GetDNSList),
          Describe("ReloadNTPConfig", &S::ReloadNTPConfig),
          Describe("FactoryReset", &S::FactoryReset),
          Describe("GetRoutingForInterface", &S::GetRoutingForInterface)};
}

std::vector<Method> DanteMethods() {
  using S = DanteService;
  return {Describe("GetName", &S::GetName),
          Describe("SetName", &S::SetName),
          Describe("GetTxChannels", &S::GetTxChannels),
          Describe("GetRxChannels", &S::GetRxChannels),
          Describe("SetTxChannelName", &S::SetTxChannelName),
          Describe("SetRxChannelName", &S::SetRxChannelName),
          Describe("GetRxChannelLink", &S::GetRxChannelLink),
          Describe("SetRxChannelLink", &S::SetRxChannelLink),
          Describe("GetLatency", &S::GetLatency),
          Describe("GetMinLatency", &S::GetMinLatency),
          Describe("SetLatency", &S::SetLatency),
          Describe("GetSoftwareVersion", &S::GetSoftwareVersion),
          Describe("GetFirmwareVersion", &S::GetFirmwareVersion),
          Describe("GetAvailableSampleRates", &S::GetAvailableSampleRates),
          Describe("GetSampleRate", &S::GetSampleRate),
          Describe("SetSampleRate", &S::SetSampleRate),
          Describe("GetIsAES67Available", &S::GetIsAES67Available),
          Describe("GetAES67Status", &S::GetAES67Status),
          Describe("SetAES67Status", &S::SetAES67Status),
          Describe("GetManufacturerName", &S::GetManufacturerName),
          Describe("GetModelName", &S::GetModelName),
          Describe("GetModelVersion", &S::GetModelVersion),
          Describe("GetPtpConfig", &S::GetPtpConfig),
          Describe("GetPtpStatus", &S::GetPtpStatus),
          Describe("Reconnect", &S::Reconnect),
          Describe("GetDisableTxStatus", &S::GetDisableTxStatus),
          Describe("SetDisableTxStatus", &S::SetDisableTxStatus),
          Describe("GetPtpSlaveOnlyStatus", &S::GetPtpSlaveOnlyStatus),
          Describe("SetPtpSlaveOnlyStatus", &S::SetPtpSlaveOnlyStatus)};
}

}  // namespace

const std::vector<Method>& MethodsOf(Daemon daemon) {
  static const std::vector<Method> network = NetworkMethods();
  static const std::vector<Method> dante = DanteMethods();
  return daemon == Daemon::kNetworkManager ? network : dante;
}

const Method* FindMethod(Daemon daemon, const std::string& name) {
  const std::vector<Method>& methods = MethodsOf(daemon);
  const auto found = std::find_if(methods.begin(), methods.end(),
                                  [&](const Method& method) { return method.name == name; });
  return found != methods.end() ? &*found : nullptr;
}

}  // namespace simulator
