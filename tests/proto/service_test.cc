// The exported server base classes have every method of both services. A method answers
// UNIMPLEMENTED until a daemon overrides it.
#include <grpcpp/create_channel.h>
#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace {

const std::vector<std::string> kNetworkManagerMethods = {"GetAvailableInterfaces",
                                                         "GetNetworkConfig",
                                                         "SetNetworkConfig",
                                                         "GetNetworkStatus",
                                                         "GetAvailableSwitchModes",
                                                         "GetSwitchMode",
                                                         "GetSwitchModeStatus",
                                                         "SetSwitchMode",
                                                         "GetHostname",
                                                         "SetHostname",
                                                         "GetNTPServer",
                                                         "SetNTPServer",
                                                         "ReloadNetworkConfig",
                                                         "GetRouting",
                                                         "GetDNSList",
                                                         "ReloadNTPConfig",
                                                         "FactoryReset",
                                                         "GetRoutingForInterface"};

const std::vector<std::string> kDapiMethods = {"GetName",
                                               "SetName",
                                               "GetTxChannels",
                                               "GetRxChannels",
                                               "SetTxChannelName",
                                               "SetRxChannelName",
                                               "GetRxChannelLink",
                                               "SetRxChannelLink",
                                               "GetLatency",
                                               "GetMinLatency",
                                               "SetLatency",
                                               "GetSoftwareVersion",
                                               "GetFirmwareVersion",
                                               "GetAvailableSampleRates",
                                               "GetSampleRate",
                                               "SetSampleRate",
                                               "GetIsAES67Available",
                                               "GetAES67Status",
                                               "SetAES67Status",
                                               "GetManufacturerName",
                                               "GetModelName",
                                               "GetModelVersion",
                                               "GetPtpConfig",
                                               "GetPtpStatus",
                                               "Reconnect",
                                               "GetDisableTxStatus",
                                               "SetDisableTxStatus",
                                               "GetPtpSlaveOnlyStatus",
                                               "SetPtpSlaveOnlyStatus"};

// Calls a method by its name, with an empty request.
grpc::Status Call(const std::shared_ptr<grpc::Channel>& channel, const std::string& path) {
  grpc::GenericStub stub(channel);
  grpc::ClientContext context;
  const grpc::Slice nothing;
  const grpc::ByteBuffer request(&nothing, 1);
  grpc::ByteBuffer reply;
  std::mutex mutex;
  std::condition_variable answered;
  grpc::Status result;
  bool done = false;
  stub.UnaryCall(&context, path, grpc::StubOptions(), &request, &reply, [&](grpc::Status status) {
    const std::lock_guard<std::mutex> lock(mutex);
    result = std::move(status);
    done = true;
    answered.notify_one();
  });
  std::unique_lock<std::mutex> lock(mutex);
  answered.wait(lock, [&] { return done; });
  return result;
}

// The message is empty; it is not if the service does not have the method.
void ExpectUnimplemented(grpc::Service& service, const std::string& prefix,
                         const std::vector<std::string>& methods) {
  int port = 0;
  grpc::ServerBuilder builder;
  builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(&service);
  const auto server = builder.BuildAndStart();
  const auto channel =
      grpc::CreateChannel("127.0.0.1:" + std::to_string(port), grpc::InsecureChannelCredentials());
  for (const std::string& method : methods) {
    SCOPED_TRACE(method);
    const grpc::Status status = Call(channel, prefix + method);
    EXPECT_EQ(status.error_code(), grpc::StatusCode::UNIMPLEMENTED);
    EXPECT_EQ(status.error_message(), "");
    EXPECT_EQ(status.error_details(), "");
  }
  server->Shutdown();
}

TEST(NetworkManagerService, MethodsNotOverridden_AreUnimplemented) {
  ostrevan::networkmanager::NetworkManager::Service service;
  EXPECT_EQ(kNetworkManagerMethods.size(), 18U);
  ExpectUnimplemented(service, "/ostrevan.networkmanager.NetworkManager/", kNetworkManagerMethods);
}

TEST(DapiService, MethodsNotOverridden_AreUnimplemented) {
  ostrevan::grpcdapi::DAPI::Service service;
  EXPECT_EQ(kDapiMethods.size(), 29U);
  ExpectUnimplemented(service, "/ostrevan.grpcdapi.DAPI/", kDapiMethods);
}

}  // namespace
