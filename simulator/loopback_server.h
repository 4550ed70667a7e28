// A gRPC server on the loopback addresses of this machine, IPv6 included where
// there is any: a client that resolves "localhost" tries "::1" first.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>

#include <memory>

namespace simulator {

class LoopbackServer {
 public:
  /// Serves `service`, which must outlive this object, on `port`; 0: on a free
  /// port. Throws std::runtime_error, which names address and reason, if it cannot
  /// listen there.
  LoopbackServer(grpc::CallbackGenericService& service, int port);

  /// Ends the open calls.
  ~LoopbackServer();

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int Port() const { return port; }

 private:
  int port;
  std::unique_ptr<grpc::Server> server;
};

}  // namespace simulator
