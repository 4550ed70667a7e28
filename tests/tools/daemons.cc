// Both daemons on loopback, as no real ones behave. Says where they listen as
// the simulator does, and serves until its standard input ends.
//
// usage: networkgrpc-test-daemons refuse|mute
//
//   refuse  every call ends with UNIMPLEMENTED
//   mute    every call is accepted and never answered
#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace {

class Mute : public grpc::CallbackGenericService {
 public:
  grpc::ServerGenericBidiReactor* CreateReactor(grpc::GenericCallbackServerContext*) override {
    return new Reactor;
  }

 private:
  // Finishes only when the caller has gone.
  class Reactor : public grpc::ServerGenericBidiReactor {
    void OnCancel() override { Finish(grpc::Status::CANCELLED); }
    void OnDone() override { delete this; }
  };
};

struct Daemon {
  std::unique_ptr<grpc::Server> server;
  int port = 0;

  explicit Daemon(const std::function<void(grpc::ServerBuilder&)>& register_service) {
    grpc::ServerBuilder builder;
    builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
    register_service(builder);
    server = builder.BuildAndStart();
    if (server == nullptr) std::exit(1);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc == 2 ? argv[1] : "";
  if (mode != "refuse" && mode != "mute") return 2;
  ostrevan::networkmanager::NetworkManager::Service network_service;
  ostrevan::grpcdapi::DAPI::Service dante_service;
  Mute mute_network;
  Mute mute_dante;
  const auto serve = [&mode](grpc::Service& service, Mute& mute) {
    return [&](grpc::ServerBuilder& builder) {
      if (mode == "mute")
        builder.RegisterCallbackGenericService(&mute);
      else
        builder.RegisterService(&service);
    };
  };
  const Daemon network(serve(network_service, mute_network));
  const Daemon dante(serve(dante_service, mute_dante));
  std::cout << "ready network_manager_url=127.0.0.1:" << network.port
            << " grpc_dapi_url=127.0.0.1:" << dante.port << std::endl;
  while (std::cin.get() != std::char_traits<char>::eof()) {
  }
  std::_Exit(0);  // without waiting for calls that are never answered
}
