// No method of either service is left to the generated base class, which would
// answer that it is not implemented.
#include "tests/simulator/simulated_device.h"

namespace {

using ostrevan::grpcdapi::DAPI;
using ostrevan::networkmanager::NetworkManager;

class EveryMethod : public support::SimulatedDevice {
 protected:
  // Calls the method with what `request` holds.
  template <class Stub, class Request, class Reply>
  static grpc::StatusCode Code(Stub& stub,
                               grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&,
                                                            Reply*),
                               const Request& request = {}) {
    Reply reply;
    return support::Call(stub, method, request, reply).error_code();
  }

  template <class Stub, class... Methods>
  static int CountAnswered(Stub& stub, Methods... methods) {
    return (static_cast<int>(Code(stub, methods) == grpc::StatusCode::OK) + ...);
  }
};

TEST_F(EveryMethod, NetworkManager_EachIsCalled_AnswersOk) {
  using Stub = NetworkManager::Stub;
  ostrevan::networkmanager::Id id;
  id.set_id(support::kControl);

  const int answered = CountAnswered(
      *stubs.network, &Stub::GetAvailableInterfaces, &Stub::GetNetworkConfig,
      &Stub::SetNetworkConfig, &Stub::GetNetworkStatus, &Stub::GetAvailableSwitchModes,
      &Stub::GetSwitchMode, &Stub::GetSwitchModeStatus, &Stub::SetSwitchMode, &Stub::GetHostname,
      &Stub::SetHostname, &Stub::GetNTPServer, &Stub::SetNTPServer, &Stub::ReloadNetworkConfig,
      &Stub::GetRouting, &Stub::GetDNSList, &Stub::ReloadNTPConfig, &Stub::FactoryReset);

  EXPECT_EQ(answered, 17);
  EXPECT_EQ(Code(*stubs.network, &Stub::GetRoutingForInterface, id), grpc::StatusCode::OK);
}

TEST_F(EveryMethod, Dante_EachIsCalled_AnswersOk) {
  using Stub = DAPI::Stub;
  ostrevan::grpcdapi::Channel channel;
  channel.set_id(1);

  const int answered = CountAnswered(
      *stubs.dante, &Stub::GetName, &Stub::SetName, &Stub::GetTxChannels, &Stub::GetRxChannels,
      &Stub::SetTxChannelName, &Stub::SetRxChannelName, &Stub::SetRxChannelLink, &Stub::GetLatency,
      &Stub::GetMinLatency, &Stub::SetLatency, &Stub::GetSoftwareVersion, &Stub::GetFirmwareVersion,
      &Stub::GetAvailableSampleRates, &Stub::GetSampleRate, &Stub::SetSampleRate,
      &Stub::GetIsAES67Available, &Stub::GetAES67Status, &Stub::SetAES67Status,
      &Stub::GetManufacturerName, &Stub::GetModelName, &Stub::GetModelVersion, &Stub::GetPtpConfig,
      &Stub::GetPtpStatus, &Stub::Reconnect, &Stub::GetDisableTxStatus, &Stub::SetDisableTxStatus,
      &Stub::GetPtpSlaveOnlyStatus, &Stub::SetPtpSlaveOnlyStatus);

  EXPECT_EQ(answered, 28);
  EXPECT_EQ(Code(*stubs.dante, &Stub::GetRxChannelLink, channel), grpc::StatusCode::OK);
}

}  // namespace
