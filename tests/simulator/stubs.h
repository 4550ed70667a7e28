// Raw stubs to the two daemons of a device, without the library in between.
#pragma once

#include <grpcpp/client_context.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace support {

using DanteStub = ostrevan::grpcdapi::DAPI::Stub;
using NetworkStub = ostrevan::networkmanager::NetworkManager::Stub;

inline std::shared_ptr<grpc::Channel> ChannelTo(const std::string& url) {
  return grpc::CreateChannel(url, grpc::InsecureChannelCredentials());
}

/// How long a test waits for what should happen at once.
inline std::chrono::system_clock::time_point In20Seconds() {
  return std::chrono::system_clock::now() + std::chrono::seconds(20);
}

struct Stubs {
  Stubs(const std::string& network_manager_url, const std::string& dapi_url)
      : network(ostrevan::networkmanager::NetworkManager::NewStub(ChannelTo(network_manager_url))),
        dante(ostrevan::grpcdapi::DAPI::NewStub(ChannelTo(dapi_url))) {}

  std::unique_ptr<NetworkStub> network;
  std::unique_ptr<DanteStub> dante;
};

/// One call, which fails after 20 seconds.
template <class Stub, class Request, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
                  const Request& request, Reply& reply) {
  grpc::ClientContext context;
  context.set_deadline(In20Seconds());
  return (stub.*method)(&context, request, &reply);
}

/// The reply to a call that must succeed.
template <class Stub, class Request, class Reply>
Reply Ask(Stub& stub, grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
          const Request& request = {}) {
  Reply reply;
  const grpc::Status status = Call(stub, method, request, reply);
  EXPECT_TRUE(status.ok()) << status.error_code() << ' ' << status.error_message();
  return reply;
}

}  // namespace support
