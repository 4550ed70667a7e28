// A daemon with one RPC; the base class answers all others with UNIMPLEMENTED.
//
// usage: write_daemon [ENDPOINT]...     default: port 50007 of both loopback addresses
//
// Not a device: docs/daemon.md explains each line, and what else a daemon has to do.
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>
#include <ostrevan/networkmanager.grpc.pb.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

namespace nm = ostrevan::networkmanager;

class NetworkManager final : public nm::NetworkManager::Service {
  grpc::Status GetHostname(grpc::ServerContext*, const ostrevan::common::Empty*,
                           nm::Hostname* reply) override {
    reply->set_hostname("amplifier");
    return grpc::Status::OK;
  }
};

int main(int argc, char** argv) {
  // The threads of gRPC inherit the mask, so that the signal arrives at sigwait.
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);

  std::vector<std::string> endpoints(argv + 1, argv + argc);
  if (endpoints.empty()) endpoints = {"127.0.0.1:50007", "[::1]:50007"};
  NetworkManager service;
  grpc::ServerBuilder builder;
  for (const auto& endpoint : endpoints)
    builder.AddListeningPort(endpoint, grpc::InsecureServerCredentials());
  // Exclusively: a second daemon on the port fails to start.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  // The library pings every 10 s, even without a call.
  builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_PERMIT_WITHOUT_CALLS, 1);
  builder.AddChannelArgument(GRPC_ARG_HTTP2_MIN_RECV_PING_INTERVAL_WITHOUT_DATA_MS, 5000);
  builder.RegisterService(&service);
  const auto server = builder.BuildAndStart();
  if (server == nullptr) {
    std::cerr << "write_daemon: cannot listen on every endpoint\n";
    return 1;
  }
  std::cout << "ready" << std::endl;
  int signal = 0;
  sigwait(&stop, &signal);
  server->Shutdown(std::chrono::system_clock::now() + std::chrono::seconds(1));
}
