#include "simulator/local_server.h"

#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

namespace simulator {

LocalServer::LocalServer(grpc::CallbackGenericService& service, const Endpoint& wanted,
                         const Options& options)
    : sockets(std::in_place, wanted) {
  using Builder = grpc::ServerBuilder;
  Builder builder;
  connections = builder.experimental().AddExternalConnectionAcceptor(
      Builder::experimental_type::ExternalConnectionType::FROM_FD,
      grpc::InsecureServerCredentials());
  if (options.accepts_any_length) builder.SetMaxReceiveMessageSize(-1);
  if (options.idle_limit_ms != 0)
    builder.AddChannelArgument(GRPC_ARG_MAX_CONNECTION_IDLE_MS,
                               static_cast<int>(options.idle_limit_ms));
  builder.RegisterCallbackGenericService(&service);
  server = builder.BuildAndStart();
  if (server == nullptr) throw std::runtime_error("cannot start a gRPC server");
  if (wanted.IsUnix()) relay.emplace();
  accepting.emplace(
      sockets->Where().Url(), sockets->Descriptors(),
      [this](int listening, Descriptor connection) { Serve(listening, std::move(connection)); });
}

LocalServer::~LocalServer() {
  accepting.reset();
  sockets.reset();
  server->Shutdown(std::chrono::system_clock::now());
  server->Wait();
}

void LocalServer::Serve(int listening, Descriptor connection) {
  if (relay.has_value()) {
    connection = relay->Add(std::move(connection));
    if (!connection.IsOpen()) return;
  } else {
    const int yes = 1;
    setsockopt(connection.Get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  }
  grpc::experimental::ExternalConnectionAcceptor::NewConnectionParameters parameters;
  parameters.listener_fd = listening;
  parameters.fd = connection.Release();
  connections->HandleNewConnection(&parameters);
}

}  // namespace simulator
