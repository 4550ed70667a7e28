// Raw stubs to the two daemons of a device, without the library in between.
#pragma once

#include <grpcpp/client_context.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace support {

struct Stubs {
  Stubs(const std::string& network_manager_url, const std::string& dapi_url);

  std::unique_ptr<ostrevan::networkmanager::NetworkManager::Stub> network;
  std::unique_ptr<ostrevan::grpcdapi::DAPI::Stub> dante;
};

/// One call, which fails after 20 seconds.
template <class Stub, class Request, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
                  const Request& request, Reply& reply) {
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(20));
  return (stub.*method)(&context, request, &reply);
}

/// The reply of a call that must succeed.
template <class Stub, class Request, class Reply>
Reply Ask(Stub& stub, grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
          const Request& request = {}) {
  Reply reply;
  const grpc::Status status = Call(stub, method, request, reply);
  EXPECT_TRUE(status.ok()) << status.error_code() << ' ' << status.error_message();
  return reply;
}

/// What the readers of both daemons answer, as bytes: two texts are equal when
/// nothing that a client can see has changed in between.
std::string Everything(const Stubs& stubs);

}  // namespace support
