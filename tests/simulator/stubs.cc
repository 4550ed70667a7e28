#include "tests/simulator/stubs.h"

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

namespace support {
namespace {

using ostrevan::grpcdapi::DAPI;
using ostrevan::networkmanager::NetworkManager;

template <class Reply>
void Append(std::string& text, const Reply& reply) {
  text += std::to_string(reply.ByteSizeLong()) + ':' + reply.SerializeAsString();
}

template <class Stub, class... Methods>
void AppendEach(std::string& text, Stub& stub, Methods... methods) {
  (Append(text, Ask(stub, methods)), ...);
}

void AppendNetwork(std::string& text, NetworkManager::Stub& stub) {
  using Stub = NetworkManager::Stub;
  AppendEach(text, stub, &Stub::GetAvailableInterfaces, &Stub::GetAvailableSwitchModes,
             &Stub::GetSwitchMode, &Stub::GetSwitchModeStatus, &Stub::GetHostname,
             &Stub::GetNTPServer, &Stub::GetRouting, &Stub::GetDNSList);
  ostrevan::networkmanager::Ids ids;
  const auto known = Ask(stub, &Stub::GetAvailableInterfaces);
  for (const auto& interface : known.interfaces()) {
    ids.add_ids(interface.id());
    ostrevan::networkmanager::Id id;
    id.set_id(interface.id());
    Append(text, Ask(stub, &Stub::GetRoutingForInterface, id));
  }
  Append(text, Ask(stub, &Stub::GetNetworkConfig, ids));
  Append(text, Ask(stub, &Stub::GetNetworkStatus, ids));
}

void AppendDante(std::string& text, DAPI::Stub& stub) {
  using Stub = DAPI::Stub;
  AppendEach(text, stub, &Stub::GetName, &Stub::GetTxChannels, &Stub::GetRxChannels,
             &Stub::GetLatency, &Stub::GetMinLatency, &Stub::GetSoftwareVersion,
             &Stub::GetFirmwareVersion, &Stub::GetAvailableSampleRates, &Stub::GetSampleRate,
             &Stub::GetIsAES67Available, &Stub::GetAES67Status, &Stub::GetManufacturerName,
             &Stub::GetModelName, &Stub::GetModelVersion, &Stub::GetPtpConfig, &Stub::GetPtpStatus,
             &Stub::GetDisableTxStatus, &Stub::GetPtpSlaveOnlyStatus);
  const auto receiving = Ask(stub, &Stub::GetRxChannels);
  for (const auto& channel : receiving.channels())
    Append(text, Ask(stub, &Stub::GetRxChannelLink, channel));
}

}  // namespace

Stubs::Stubs(const std::string& network_manager_url, const std::string& dapi_url)
    : network(NetworkManager::NewStub(
          grpc::CreateChannel(network_manager_url, grpc::InsecureChannelCredentials()))),
      dante(DAPI::NewStub(grpc::CreateChannel(dapi_url, grpc::InsecureChannelCredentials()))) {}

std::string Everything(const Stubs& stubs) {
  std::string text;
  AppendNetwork(text, *stubs.network);
  AppendDante(text, *stubs.dante);
  return text;
}

}  // namespace support
