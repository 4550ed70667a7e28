// A gRPC server on sockets of this machine.
//
// It accepts the connections itself: gRPC 1.51 stops accepting for good when the
// process has no file descriptor left.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "simulator/acceptor.h"
#include "simulator/listening.h"
#include "simulator/relay.h"

namespace simulator {

class LocalServer {
 public:
  struct Options {
    bool accepts_any_length = false;  // of requests; otherwise gRPC's default
    std::uint32_t idle_limit_ms = 0;  // closes connections without a call after this; 0: never
  };

  /// Serves `service`, which must outlive this object. Throws std::runtime_error,
  /// which names address and reason, if it cannot listen there.
  LocalServer(grpc::CallbackGenericService& service, const Endpoint& wanted,
              const Options& options);

  /// Ends the open calls.
  ~LocalServer();

  LocalServer(const LocalServer&) = delete;
  LocalServer& operator=(const LocalServer&) = delete;

  /// With the port that the system chose.
  const Endpoint& Where() const { return sockets->Where(); }

 private:
  void Serve(int listening, Descriptor connection);

  std::optional<ListeningSockets> sockets;
  std::unique_ptr<grpc::experimental::ExternalConnectionAcceptor> connections;
  std::unique_ptr<grpc::Server> server;
  std::optional<Relay> relay;  // for Unix sockets
  std::optional<AcceptingThread> accepting;
};

}  // namespace simulator
