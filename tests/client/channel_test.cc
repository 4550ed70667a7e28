// The arguments of the two channels. This program defines CreateCustomChannel, which the
// library calls instead of gRPC's.
#include <grpcpp/create_channel.h>
#include <grpcpp/grpcpp.h>
#include <grpcpp/impl/grpc_library.h>
#include <grpcpp/support/channel_arguments.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "support/device.h"

namespace {

struct Made {
  std::string target;
  std::vector<std::pair<std::string, std::string>> arguments;
  std::shared_ptr<grpc::Channel> channel;
};
std::vector<Made> made;

const std::vector<std::pair<std::string, std::string>> kKeepalive = {
    {"grpc.keepalive_time_ms", "10000"},
    {"grpc.keepalive_timeout_ms", "10000"},
    {"grpc.keepalive_permit_without_calls", "1"}};

}  // namespace

namespace grpc {

std::shared_ptr<Channel> CreateCustomChannel(const std::string& target,
                                             const std::shared_ptr<ChannelCredentials>& creds,
                                             const ChannelArguments& args) {
  Made channel{target, {}, nullptr};
  const grpc_channel_args list = args.c_channel_args();
  for (std::size_t i = 0; i < list.num_args; ++i) {
    const grpc_arg& argument = list.args[i];
    std::string value = "a pointer";
    if (argument.type == GRPC_ARG_INTEGER) value = std::to_string(argument.value.integer);
    if (argument.type == GRPC_ARG_STRING) value = argument.value.string;
    channel.arguments.emplace_back(argument.key, value);
  }
  channel.channel = experimental::CreateCustomChannelWithInterceptors(target, creds, args, {});
  made.push_back(channel);
  return channel.channel;
}

}  // namespace grpc

namespace {

// All but the user agent that ChannelArguments sets in this version of gRPC.
std::vector<std::pair<std::string, std::string>> OwnArguments(const Made& channel) {
  const std::pair<std::string, std::string> by_grpc(GRPC_ARG_PRIMARY_USER_AGENT_STRING,
                                                    "grpc-c++/" + grpc::Version());
  std::vector<std::pair<std::string, std::string>> own;
  for (const auto& argument : channel.arguments)
    if (argument != by_grpc) own.push_back(argument);
  return own;
}

TEST(Channel, NetworkManagerUrlIsSet_IsTheTargetVerbatim) {
  setenv("network_manager_url", "dns:///no such host:x", 1);
  NetworkManagerClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, "dns:///no such host:x");
  EXPECT_EQ(OwnArguments(made[0]), kKeepalive);
}

TEST(Channel, NetworkManagerUrlIsUnset_IsTheDefault) {
  unsetenv("network_manager_url");
  NetworkManagerClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, "localhost:50007");
}

TEST(Channel, NetworkManagerUrlIsEmpty_IsTheEmptyTarget) {
  setenv("network_manager_url", "", 1);
  NetworkManagerClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, "");
}

TEST(Channel, DapiUrlIsSet_IsTheTargetVerbatim) {
  setenv("grpc_dapi_url", " 127.0.0.1:1 ", 1);
  DAPIClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, " 127.0.0.1:1 ");
  EXPECT_EQ(OwnArguments(made[0]), kKeepalive);
}

TEST(Channel, DapiUrlIsUnset_IsTheDefault) {
  unsetenv("grpc_dapi_url");
  DAPIClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, "localhost:50008");
}

TEST(Channel, DapiUrlIsEmpty_IsTheEmptyTarget) {
  setenv("grpc_dapi_url", "", 1);
  DAPIClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].target, "");
}

TEST(Channel, MadeWithoutACall_DoesNotConnect) {
  const support::Device device;
  DAPIClient::GetInstance();

  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].channel->GetState(false), GRPC_CHANNEL_IDLE);
}

TEST(Channel, UsedAgain_IsNotMadeAgain) {
  support::Device device;
  device.BuildClients();
  device.BuildClients();

  EXPECT_EQ(made.size(), 2U);
}

}  // namespace
