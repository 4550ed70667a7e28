// Every method of both clients: the path and the bytes that it sends, the reply and the
// status that it returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <type_traits>

#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/rpcs.h"

namespace {

using support::Device;
using support::Request;
using support::Rpc;

// A field that no message has. A message of any type keeps it.
const std::string kSomeRequest("\xc2\x3e\x01x", 4);
const std::string kSomeReply("\xc2\x3e\x01y", 4);

std::vector<Rpc> ClientMethods() {
  std::vector<Rpc> methods;
  for (const Rpc& rpc : support::AllRpcs())
    if (rpc.through_client != nullptr) methods.push_back(rpc);
  return methods;
}

class EveryMethod : public testing::TestWithParam<Rpc> {
 protected:
  EveryMethod() { device.BuildClients(); }

  void Script(const support::Answer& answer) {
    device.DaemonOf(GetParam().path).Script(GetParam().path, answer);
  }

  static grpc::Status Call(std::string& reply) {
    return GetParam().through_client(kSomeRequest)(&reply);
  }

  Device device;
};

TEST_P(EveryMethod, MakesOneCallOnItsPathAndReturnsTheReply) {
  Script({kSomeReply});
  const std::string sent = GetParam().has_parameters ? kSomeRequest : "";
  support::CapturedStderr captured;
  std::string reply;

  const grpc::Status status = Call(reply);

  EXPECT_TRUE(status.ok());
  EXPECT_EQ(reply, kSomeReply);
  EXPECT_EQ(device.TakeRequests(), (std::vector<Request>{{GetParam().path, sent}}));
  EXPECT_EQ(captured.Take(), "");
}

TEST_P(EveryMethod, ReturnsEveryStatusUnchangedAndPrintsNothing) {
  support::CapturedStderr captured;
  for (int code = 1; code <= 16; ++code) {
    SCOPED_TRACE(code);
    const grpc::Status sent(static_cast<grpc::StatusCode>(code), "message", "details");
    Script({"", sent});
    std::string reply;

    const grpc::Status received = Call(reply);

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

  EXPECT_EQ(Call(reply).error_code(), grpc::StatusCode::UNAVAILABLE);
}

INSTANTIATE_TEST_SUITE_P(Clients, EveryMethod, testing::ValuesIn(ClientMethods()),
                         [](const auto& test) { return support::MethodOf(test.param.path); });

// How many methods the header of a client declares that make a call.
std::size_t DeclaredMethods(const std::string& header) {
  std::ifstream file(CLIENT_FOLDER "/" + header);
  std::size_t count = 0;
  for (std::string line; std::getline(file, line);)
    if (line.rfind("  grpc::Status ", 0) == 0) ++count;
  return count;
}

TEST(Clients, EveryMethodThatTheyDeclare_IsInTheTable) {
  EXPECT_EQ(ClientMethods().size(),
            DeclaredMethods("NetworkManagerClient.h") + DeclaredMethods("DAPIClient.h"));
}

TEST(Clients, CannotBeBuiltOrCopiedByOthers) {
  EXPECT_FALSE(std::is_default_constructible_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_copy_constructible_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_copy_assignable_v<NetworkManagerClient>);
  EXPECT_FALSE(std::is_default_constructible_v<DAPIClient>);
  EXPECT_FALSE(std::is_copy_constructible_v<DAPIClient>);
  EXPECT_FALSE(std::is_copy_assignable_v<DAPIClient>);
}

// A rejection is a reply: the status is OK.
TEST(Clients, RejectedChange_IsAnOkStatus) {
  Device device;
  device.BuildClients();
  device.dapi->Script(support::DapiPath("SetName"), {""});
  ostrevan::grpcdapi::Success reply;

  EXPECT_TRUE(DAPIClient::GetInstance().SetName(ostrevan::grpcdapi::Name(), &reply).ok());
  EXPECT_FALSE(reply.success());
}

TEST(Clients, CallWithoutAnAnswer_WaitsForIt) {
  Device device;
  device.BuildClients();
  device.dapi->Script(support::DapiPath("GetName"), {"", grpc::Status::OK, true});
  ostrevan::grpcdapi::Name reply;
  grpc::Status status;

  std::thread caller([&] { status = DAPIClient::GetInstance().GetName(&reply); });
  ASSERT_TRUE(device.dapi->WaitForRequests(1));
  device.StopDapi();
  caller.join();

  EXPECT_FALSE(status.ok());
}

}  // namespace
