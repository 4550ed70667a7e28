// One gRPC server on the loopback addresses of this machine.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <functional>
#include <memory>

namespace simulator {

class LoopbackServer {
 public:
  /// Serves `service`, which must outlive this object, on `port`; on a free one
  /// when that is 0. Throws PortUnavailable.
  LoopbackServer(grpc::Service& service, int port);
  LoopbackServer(grpc::CallbackGenericService& service, int port);

  /// Ends the calls that are open.
  ~LoopbackServer();

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int Port() const { return port; }

 private:
  using Registration = std::function<void(grpc::ServerBuilder&)>;
  LoopbackServer(const Registration& registration, int port);

  int port;
  std::unique_ptr<grpc::Server> server;
};

}  // namespace simulator
