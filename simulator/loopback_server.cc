#include "simulator/loopback_server.h"

#include <grpcpp/security/server_credentials.h>

#include <chrono>

#include "simulator/loopback_port.h"

namespace simulator {
namespace {

// How often a port may be lost to another process between finding it free and
// listening on it.
constexpr int kAttempts = 5;

// Null when the port is taken.
std::unique_ptr<grpc::Server> Serve(const std::function<void(grpc::ServerBuilder&)>& registration,
                                    int port) {
  grpc::ServerBuilder builder;
  // Without this, two processes could share the port and each get half the calls.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  for (const std::string& address : LoopbackAddresses())
    builder.AddListeningPort(address + ':' + std::to_string(port),
                             grpc::InsecureServerCredentials());
  registration(builder);
  return builder.BuildAndStart();
}

}  // namespace

LoopbackServer::LoopbackServer(grpc::Service& service, int requested_port)
    : LoopbackServer([&](grpc::ServerBuilder& builder) { builder.RegisterService(&service); },
                     requested_port) {}

LoopbackServer::LoopbackServer(grpc::CallbackGenericService& service, int requested_port)
    : LoopbackServer(
          [&](grpc::ServerBuilder& builder) { builder.RegisterCallbackGenericService(&service); },
          requested_port) {}

LoopbackServer::LoopbackServer(const Registration& registration, int requested_port)
    : port(requested_port) {
  if (requested_port != 0) {
    RequireFreePort(port);
    server = Serve(registration, port);
  }
  for (int attempt = 0; requested_port == 0 && server == nullptr && attempt < kAttempts;
       ++attempt) {
    port = FindFreePort();
    server = Serve(registration, port);
  }
  if (server == nullptr)
    throw PortUnavailable("cannot listen on port " + std::to_string(port) +
                          " of the loopback addresses");
}

LoopbackServer::~LoopbackServer() {
  server->Shutdown(std::chrono::system_clock::now());
  server->Wait();
}

}  // namespace simulator
