#include "simulator/simulator.h"

#include "simulator/dante_service.h"
#include "simulator/factory.h"
#include "simulator/loopback_server.h"
#include "simulator/network_service.h"

namespace simulator {
namespace {

std::string Url(int port) { return "127.0.0.1:" + std::to_string(port); }

}  // namespace

// Apart from the class, so that its users need no gRPC headers.
class Simulator::Daemons {
 public:
  Daemons(SharedDevice& device, const Options& options)
      : network_service(device),
        dante_service(device),
        network_manager(network_service, options.network_manager_port),
        dapi(dante_service, options.dapi_port) {}

  int NetworkManagerPort() const { return network_manager.Port(); }
  int DapiPort() const { return dapi.Port(); }

 private:
  NetworkService network_service;
  DanteService dante_service;
  LoopbackServer network_manager;
  LoopbackServer dapi;
};

Simulator::Simulator(const Options& options)
    : device(FactoryDevice(options.tx_channels, options.rx_channels)),
      daemons(std::make_unique<Daemons>(device, options)),
      network_manager_port(daemons->NetworkManagerPort()),
      dapi_port(daemons->DapiPort()) {}

Simulator::~Simulator() = default;

std::string Simulator::NetworkManagerUrl() const { return Url(network_manager_port); }

std::string Simulator::DapiUrl() const { return Url(dapi_port); }

void Simulator::Stop() { daemons.reset(); }

}  // namespace simulator
