// Both daemons in one process, derived from the installed server base classes. Three
// methods have handlers; the base classes answer all others. Prints its port, then
// serves until SIGTERM.
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>
#include <ostrevan/grpcdapi.grpc.pb.h>
#include <ostrevan/networkmanager.grpc.pb.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

namespace {

class Network final : public ostrevan::networkmanager::NetworkManager::Service {
  grpc::Status GetSwitchModeStatus(grpc::ServerContext*, const ostrevan::common::Empty*,
                                   ostrevan::networkmanager::SwitchMode* reply) override {
    reply->set_id(2);
    reply->set_name("redundant");
    return grpc::Status::OK;
  }

  grpc::Status SetHostname(grpc::ServerContext*, const ostrevan::networkmanager::Hostname* request,
                           ostrevan::networkmanager::Success* reply) override {
    reply->set_success(request->hostname() == "amp7");
    return grpc::Status::OK;
  }
};

class Dante final : public ostrevan::grpcdapi::DAPI::Service {
  grpc::Status GetName(grpc::ServerContext*, const ostrevan::common::Empty*,
                       ostrevan::grpcdapi::Name* reply) override {
    reply->set_name("stage left");
    return grpc::Status::OK;
  }
};

}  // namespace

int main() {
  // Ends this process even if the test crashes.
  constexpr unsigned kLimitSeconds = 600;
  alarm(kLimitSeconds);

  // Blocked before gRPC starts threads, so that they inherit the mask.
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);

  Network network;
  Dante dante;
  int port = 0;
  grpc::ServerBuilder builder;
  builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(&network);
  builder.RegisterService(&dante);
  const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
  if (server == nullptr) return 1;
  std::printf("%d\n", port);
  std::fflush(stdout);

  int signal_number = 0;
  sigwait(&ending, &signal_number);
  server->Shutdown();
  return 0;
}
