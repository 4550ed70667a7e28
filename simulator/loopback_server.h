// One gRPC server on the loopback addresses of this machine.
#pragma once

#include <grpcpp/server.h>

#include <memory>

namespace simulator {

class LoopbackServer {
 public:
  /// Serves `service`, which must outlive this object, on `port`; on a free one
  /// when that is 0. Throws PortUnavailable.
  LoopbackServer(grpc::Service& service, int port);

  /// Ends the calls that are open.
  ~LoopbackServer();

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int Port() const { return port; }

 private:
  int port;
  std::unique_ptr<grpc::Server> server;
};

}  // namespace simulator
