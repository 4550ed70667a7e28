// The exported server base classes have every method of both services. A method answers
// UNIMPLEMENTED until a daemon overrides it.
#include <gmock/gmock.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "support/device.h"
#include "support/rpcs.h"

namespace {

using support::Rpc;

// The names of the RPCs that a schema file declares.
std::vector<std::string> DeclaredRpcs(const std::string& schema) {
  std::ifstream file(SCHEMA_FOLDER "/" + schema);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::regex rpc("\\brpc +(\\w+)");
  return {std::sregex_token_iterator(text.begin(), text.end(), rpc, 1), {}};
}

std::vector<std::string> MethodsOf(const std::vector<Rpc>& rpcs) {
  std::vector<std::string> methods;
  for (const Rpc& rpc : rpcs) methods.push_back(support::MethodOf(rpc.path));
  return methods;
}

TEST(Schema, NetworkManagerRpcs_AreThoseOfTheTable) {
  EXPECT_THAT(MethodsOf(support::NetworkManagerRpcs()),
              testing::UnorderedElementsAreArray(DeclaredRpcs("networkmanager.proto")));
}

TEST(Schema, DapiRpcs_AreThoseOfTheTable) {
  EXPECT_THAT(MethodsOf(support::DapiRpcs()),
              testing::UnorderedElementsAreArray(DeclaredRpcs("grpcdapi.proto")));
}

// The message is empty; it is not if the service does not have the method.
TEST(Service, MethodsNotOverridden_AreUnimplemented) {
  ostrevan::networkmanager::NetworkManager::Service network_manager;
  ostrevan::grpcdapi::DAPI::Service dapi;
  int port = 0;
  grpc::ServerBuilder builder;
  builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(&network_manager).RegisterService(&dapi);
  const auto server = builder.BuildAndStart();
  const auto channel =
      grpc::CreateChannel("127.0.0.1:" + std::to_string(port), grpc::InsecureChannelCredentials());
  const support::DaemonStubs stubs(channel, channel);

  for (const Rpc& rpc : support::AllRpcs()) {
    SCOPED_TRACE(rpc.path);
    const grpc::Status status = rpc.through_stub(stubs, "")(nullptr);
    EXPECT_EQ(status.error_code(), grpc::StatusCode::UNIMPLEMENTED);
    EXPECT_EQ(status.error_message(), "");
    EXPECT_EQ(status.error_details(), "");
  }
  server->Shutdown();
}

}  // namespace
