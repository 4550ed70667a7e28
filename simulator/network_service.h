// The network-manager daemon's gRPC service: translates between the wire and the
// model. What is accepted is decided in network_rules.h.
#pragma once

#include <grpcpp/server_context.h>

#include "ostrevan/networkmanager.grpc.pb.h"
#include "simulator/shared_device.h"

namespace simulator {

class NetworkService : public ostrevan::networkmanager::NetworkManager::Service {
 public:
  /// The device must outlive the service.
  explicit NetworkService(SharedDevice& shared) : device(shared) {}

  grpc::Status GetAvailableInterfaces(grpc::ServerContext* context,
                                      const ostrevan::common::Empty* request,
                                      ostrevan::networkmanager::Interfaces* reply) override;
  grpc::Status GetNetworkConfig(grpc::ServerContext* context,
                                const ostrevan::networkmanager::Ids* request,
                                ostrevan::networkmanager::InterfacesConfig* reply) override;
  grpc::Status SetNetworkConfig(grpc::ServerContext* context,
                                const ostrevan::networkmanager::InterfaceConfig* request,
                                ostrevan::networkmanager::Success* reply) override;
  grpc::Status GetNetworkStatus(grpc::ServerContext* context,
                                const ostrevan::networkmanager::Ids* request,
                                ostrevan::networkmanager::InterfacesStatus* reply) override;
  grpc::Status GetAvailableSwitchModes(grpc::ServerContext* context,
                                       const ostrevan::common::Empty* request,
                                       ostrevan::networkmanager::SwitchModes* reply) override;
  grpc::Status GetSwitchMode(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                             ostrevan::networkmanager::SwitchMode* reply) override;
  grpc::Status GetSwitchModeStatus(grpc::ServerContext* context,
                                   const ostrevan::common::Empty* request,
                                   ostrevan::networkmanager::SwitchMode* reply) override;
  grpc::Status SetSwitchMode(grpc::ServerContext* context,
                             const ostrevan::networkmanager::Id* request,
                             ostrevan::networkmanager::Success* reply) override;
  grpc::Status GetHostname(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                           ostrevan::networkmanager::Hostname* reply) override;
  grpc::Status SetHostname(grpc::ServerContext* context,
                           const ostrevan::networkmanager::Hostname* request,
                           ostrevan::networkmanager::Success* reply) override;
  grpc::Status GetNTPServer(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                            ostrevan::networkmanager::NTPServer* reply) override;
  grpc::Status SetNTPServer(grpc::ServerContext* context,
                            const ostrevan::networkmanager::NTPServer* request,
                            ostrevan::networkmanager::Success* reply) override;
  grpc::Status ReloadNetworkConfig(grpc::ServerContext* context,
                                   const ostrevan::common::Empty* request,
                                   ostrevan::networkmanager::Success* reply) override;
  grpc::Status GetRouting(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                          ostrevan::networkmanager::Routing* reply) override;
  grpc::Status GetDNSList(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                          ostrevan::networkmanager::DNS* reply) override;
  grpc::Status ReloadNTPConfig(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                               ostrevan::networkmanager::Success* reply) override;
  grpc::Status FactoryReset(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                            ostrevan::networkmanager::Success* reply) override;
  grpc::Status GetRoutingForInterface(grpc::ServerContext* context,
                                      const ostrevan::networkmanager::Id* request,
                                      ostrevan::networkmanager::Routing* reply) override;

 private:
  SharedDevice& device;
};

}  // namespace simulator
