// A gRPC server on the loopback addresses of this machine, IPv6 included where
// there is any: a client that resolves "localhost" tries "::1" first.
//
// It accepts the connections itself: gRPC 1.51 stops accepting for good when the
// process has no file descriptor left.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <memory>
#include <optional>
#include <vector>

#include "simulator/acceptor.h"
#include "simulator/descriptor.h"

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
  void Serve(int listening, Descriptor connection);

  std::vector<Descriptor> sockets;  // listening
  int port;
  std::unique_ptr<grpc::experimental::ExternalConnectionAcceptor> connections;
  std::unique_ptr<grpc::Server> server;
  std::optional<AcceptingThread> accepting;
};

}  // namespace simulator
