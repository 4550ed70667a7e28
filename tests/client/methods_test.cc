// Every method of both clients: the path and the bytes that go out, the reply
// and the status that come back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <type_traits>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/device.h"

namespace {

namespace nm = ostrevan::networkmanager;
namespace dapi = ostrevan::grpcdapi;
using support::Device;
using support::Request;

struct Method {
  std::string name;
  std::string path;
  std::string request;
  std::string reply;
  std::function<grpc::Status(std::string& reply)> call;  // hands the reply's bytes out
};

std::ostream& operator<<(std::ostream& out, const Method& method) { return out << method.name; }

template <class Client, class Reply>
Method Plain(const std::string& path, grpc::Status (Client::*call)(Reply*), const Reply& reply) {
  const std::string name = path.substr(path.rfind('/') + 1);
  return {name, path, "", reply.SerializeAsString(), [call](std::string& bytes) {
            Reply received;
            const grpc::Status status = (Client::GetInstance().*call)(&received);
            bytes = received.SerializeAsString();
            return status;
          }};
}

template <class Client, class Request, class Reply>
Method With(const std::string& path, grpc::Status (Client::*call)(const Request&, Reply*),
            const Request& request, const Reply& reply) {
  const std::string name = path.substr(path.rfind('/') + 1);
  return {name, path, request.SerializeAsString(), reply.SerializeAsString(),
          [call, request](std::string& bytes) {
            Reply received;
            const grpc::Status status = (Client::GetInstance().*call)(request, &received);
            bytes = received.SerializeAsString();
            return status;
          }};
}

// A message with something in it.
template <class Message>
Message Parsed(const std::string& bytes) {
  Message message;
  EXPECT_TRUE(message.ParseFromString(bytes));
  EXPECT_EQ(message.SerializeAsString(), bytes);
  return message;
}

const std::string kNumber("\x08\x01", 2);        // field 1 as a number, or as true
const std::string kText("\x0a\x01x", 3);         // field 1 as a text
const std::string kList("\x0a\x02\x08\x01", 4);  // field 1 as a message whose field 1 is 1

std::vector<Method> NetworkManagerMethods() {
  using Client = NetworkManagerClient;
  const auto path = support::NetworkManagerPath;
  const auto yes = Parsed<nm::Success>(kNumber);
  const auto mode = Parsed<nm::SwitchMode>(kNumber);
  const auto ids = Parsed<nm::Ids>("\x0a\x01\x05");
  const auto id = Parsed<nm::Id>(kNumber);
  const auto hostname = Parsed<nm::Hostname>(kText);
  const auto ntp = Parsed<nm::NTPServer>(kText);
  const auto config = Parsed<nm::InterfaceConfig>(kNumber);
  return {
      Plain(path("GetAvailableInterfaces"), &Client::GetAvailableInterfaces,
            Parsed<nm::Interfaces>(kList)),
      With(path("GetNetworkConfig"), &Client::GetNetworkConfig, ids,
           Parsed<nm::InterfacesConfig>(kList)),
      With(path("GetNetworkStatus"), &Client::GetNetworkStatus, ids,
           Parsed<nm::InterfacesStatus>(kList)),
      With(path("SetNetworkConfig"), &Client::SetNetworkConfig, config, yes),
      Plain(path("GetAvailableSwitchModes"), &Client::GetAvailableSwitchModes,
            Parsed<nm::SwitchModes>(kList)),
      // The two readers of the switch mode are crossed over.
      Plain(path("GetSwitchModeStatus"), &Client::GetCurrentSwitchMode, mode),
      Plain(path("GetSwitchMode"), &Client::GetConfiguredSwitchMode, mode),
      With(path("SetSwitchMode"), &Client::SetSwitchMode, id, yes),
      Plain(path("GetHostname"), &Client::GetHostname, hostname),
      With(path("SetHostname"), &Client::SetHostname, hostname, yes),
      Plain(path("GetNTPServer"), &Client::GetNTPServer, ntp),
      With(path("SetNTPServer"), &Client::SetNTPServer, ntp, yes),
      Plain(path("GetRouting"), &Client::GetRouting, Parsed<nm::Routing>(kText)),
      Plain(path("GetDNSList"), &Client::GetDNSList, Parsed<nm::DNS>(kText)),
      Plain(path("ReloadNetworkConfig"), &Client::ReloadNetworkConfig, yes),
      Plain(path("ReloadNTPConfig"), &Client::ReloadNTPConfig, yes),
      Plain(path("FactoryReset"), &Client::FactoryReset, yes),
  };
}

std::vector<Method> DapiMethods() {
  using Client = DAPIClient;
  const auto path = support::DapiPath;
  const auto yes = Parsed<dapi::Success>(kNumber);
  const auto name = Parsed<dapi::Name>(kText);
  const auto version = Parsed<dapi::Version>(kText);
  const auto on = Parsed<dapi::Status>(kNumber);
  const auto channel = Parsed<dapi::Channel>(kNumber);
  const auto channels = Parsed<dapi::Channels>(kList);
  const auto link = Parsed<dapi::LinkInfo>(kNumber);
  const auto latency = Parsed<dapi::Latency>(kNumber);
  const auto rate = Parsed<dapi::SampleRate>(kNumber);
  return {
      Plain(path("GetName"), &Client::GetName, name),
      With(path("SetName"), &Client::SetName, name, yes),
      Plain(path("GetTxChannels"), &Client::GetTxChannels, channels),
      Plain(path("GetRxChannels"), &Client::GetRxChannels, channels),
      With(path("SetTxChannelName"), &Client::SetTxChannelName, channel, yes),
      With(path("GetRxChannelLink"), &Client::GetRxChannelLink, channel, link),
      With(path("SetRxChannelLink"), &Client::SetRxChannelLink, link, yes),
      Plain(path("GetLatency"), &Client::GetLatency, latency),
      With(path("SetLatency"), &Client::SetLatency, latency, yes),
      Plain(path("GetSoftwareVersion"), &Client::GetSoftwareVersion, version),
      Plain(path("GetFirmwareVersion"), &Client::GetFirmwareVersion, version),
      Plain(path("GetAvailableSampleRates"), &Client::GetAvailableSampleRates,
            Parsed<dapi::AvailableSampleRates>("\x0a\x01\x05")),
      Plain(path("GetSampleRate"), &Client::GetSampleRate, rate),
      With(path("SetSampleRate"), &Client::SetSampleRate, rate, yes),
      Plain(path("GetIsAES67Available"), &Client::GetIsAES67Available, on),
      Plain(path("GetAES67Status"), &Client::GetAES67Status, on),
      With(path("SetAES67Status"), &Client::SetAES67Status, on, yes),
      Plain(path("GetManufacturerName"), &Client::GetManufacturerName, name),
      Plain(path("GetModelName"), &Client::GetModelName, name),
      Plain(path("GetModelVersion"), &Client::GetModelVersion, version),
      Plain(path("GetDisableTxStatus"), &Client::GetDisableTxStatus, on),
      With(path("SetDisableTxStatus"), &Client::SetDisableTxStatus, on, yes),
      Plain(path("GetPtpSlaveOnlyStatus"), &Client::GetPtpSlaveOnlyStatus, on),
      With(path("SetPtpSlaveOnlyStatus"), &Client::SetPtpSlaveOnlyStatus, on, yes),
  };
}

std::vector<Method> AllMethods() {
  std::vector<Method> all = NetworkManagerMethods();
  for (Method& method : DapiMethods()) all.push_back(std::move(method));
  return all;
}

class EveryMethod : public testing::TestWithParam<Method> {
 protected:
  EveryMethod() { device.BuildClients(); }

  void Script(const support::Answer& answer) {
    const bool network = GetParam().path.rfind(support::NetworkManagerPath(""), 0) == 0;
    (network ? device.network_manager : device.dapi)->Script(GetParam().path, answer);
  }

  Device device;
};

TEST_P(EveryMethod, MakesOneCallOnItsPathAndHandsTheReplyOut) {
  Script({GetParam().reply});
  support::CapturedStderr captured;
  std::string reply;

  const grpc::Status status = GetParam().call(reply);

  EXPECT_TRUE(status.ok());
  EXPECT_EQ(reply, GetParam().reply);
  EXPECT_EQ(device.TakeRequests(), (std::vector<Request>{{GetParam().path, GetParam().request}}));
  EXPECT_EQ(captured.Take(), "");
}

TEST_P(EveryMethod, HandsEveryStatusOutUnchangedAndPrintsNothing) {
  support::CapturedStderr captured;
  for (int code = 1; code <= 16; ++code) {
    SCOPED_TRACE(code);
    const grpc::Status sent(static_cast<grpc::StatusCode>(code), "message", "details");
    Script({"", sent});
    std::string reply;

    const grpc::Status received = GetParam().call(reply);

    EXPECT_EQ(received.error_code(), sent.error_code());
    EXPECT_EQ(received.error_message(), "message");
    EXPECT_EQ(received.error_details(), "details");
    EXPECT_EQ(device.TakeRequests().size(), 1U);
  }
  EXPECT_EQ(captured.Take(), "");
}

TEST_P(EveryMethod, DaemonStopped_IsUnavailable) {
  device.StopNetworkManager();
  device.StopDapi();
  std::string reply;

  EXPECT_EQ(GetParam().call(reply).error_code(), grpc::StatusCode::UNAVAILABLE);
}

INSTANTIATE_TEST_SUITE_P(Clients, EveryMethod, testing::ValuesIn(AllMethods()),
                         [](const auto& test) { return test.param.name; });

TEST(Clients, HaveSeventeenAndTwentyFourMethods) {
  EXPECT_EQ(NetworkManagerMethods().size(), 17U);
  EXPECT_EQ(DapiMethods().size(), 24U);
}

TEST(Clients, CannotBeBuiltOrCopiedByOthers) {
  EXPECT_FALSE(std::is_default_constructible_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_copy_constructible_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_copy_assignable_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_default_constructible_v<DAPIClient>);
  EXPECT_FALSE(std::is_copy_constructible_v<DAPIClient>);
  EXPECT_FALSE(std::is_copy_assignable_v<DAPIClient>);
}

// The daemon's answer is the caller's business, also a refusal.
TEST(Clients, RefusedChange_IsAnOkStatus) {
  Device device;
  device.BuildClients();
  device.dapi->Script(support::DapiPath("SetName"), {""});
  dapi::Success reply;

  EXPECT_TRUE(DAPIClient::GetInstance().SetName(dapi::Name(), &reply).ok());
  EXPECT_FALSE(reply.success());
}

TEST(Clients, CallCarriesNoDeadlineAndWaitsForItsAnswer) {
  Device device;
  device.BuildClients();
  device.dapi->Script(support::DapiPath("GetName"), {"", grpc::Status::OK, true});
  dapi::Name reply;
  grpc::Status status;

  std::thread caller([&] { status = DAPIClient::GetInstance().GetName(&reply); });
  ASSERT_TRUE(device.dapi->WaitForRequests(1));
  EXPECT_FALSE(device.dapi->LastCallHadDeadline());
  device.StopDapi();
  caller.join();

  EXPECT_FALSE(status.ok());
}

}  // namespace
