#include "simulator/simulator.h"

#include <mutex>

#include "simulator/connections.h"
#include "simulator/dante_service.h"
#include "simulator/dispatcher.h"
#include "simulator/factory_defaults.h"
#include "simulator/loopback_server.h"
#include "simulator/network_service.h"

namespace simulator {
namespace {

std::string Url(int port) { return "127.0.0.1:" + std::to_string(port); }

State OutOfTheBox(const Options& options) {
  return {FactoryDefaults(options.tx_channels, options.rx_channels), {}};
}

// One daemon, which can be stopped and started again on its port.
class Process {
 public:
  Process(Daemon which, grpc::Service& answering, Faults& table, int wanted_port)
      : daemon(which), service(answering), faults(table), port(wanted_port) {
    Start();
  }

  int Port() const { return port; }

  void Stop() {
    const std::lock_guard<std::mutex> lock(mutex);
    running.reset();
  }
  void Start() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (running != nullptr) return;
    running = std::make_unique<Running>(daemon, service, faults, port);
    port = running->server.Port();
  }
  void Thaw(const std::string& pattern) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (running != nullptr) running->dispatcher.Thaw(pattern);
  }

 private:
  // A generic service can be registered with one server only.
  struct Running {
    Running(Daemon which, grpc::Service& answering, Faults& table, int wanted_port)
        : dispatcher(which, answering, table), server(dispatcher, wanted_port) {}

    Dispatcher dispatcher;
    LoopbackServer server;
  };

  const Daemon daemon;
  grpc::Service& service;
  Faults& faults;
  std::mutex mutex;  // guards what runs
  std::unique_ptr<Running> running;
  int port;  // as wanted, 0 for any, until it has run; then the one it had
};

}  // namespace

// Apart from the class, so that its users need no gRPC headers.
class Simulator::Daemons {
 public:
  Daemons(SharedDevice& device, Faults& faults, const Options& options)
      : network_service(device),
        dante_service(device),
        network_manager(Daemon::kNetworkManager, network_service, faults,
                        options.network_manager_port),
        dapi(Daemon::kDapi, dante_service, faults, options.dapi_port) {}

  Process& Of(Daemon which) { return which == Daemon::kDapi ? dapi : network_manager; }

 private:
  NetworkService network_service;
  DanteService dante_service;
  Process network_manager;
  Process dapi;
};

Simulator::Simulator(const Options& options) : Simulator(options, OutOfTheBox(options)) {}

Simulator::Simulator(const Options& options, const State& state)
    : device(state.device),
      daemons(std::make_unique<Daemons>(device, faults, options)),
      network_manager_port(daemons->Of(Daemon::kNetworkManager).Port()),
      dapi_port(daemons->Of(Daemon::kDapi).Port()) {
  for (const Fault& fault : state.faults) Inject(fault);
}

Simulator::~Simulator() = default;

std::string Simulator::NetworkManagerUrl() const { return Url(network_manager_port); }

std::string Simulator::DapiUrl() const { return Url(dapi_port); }

State Simulator::CurrentState() {
  return {device.With([](const Device& it) { return it; }), faults.List()};
}

void Simulator::Inject(const Fault& fault) {
  Check(fault);
  faults.Add(fault);
  if (fault.kind == FaultKind::kStop && daemons != nullptr)
    daemons->Of(StoppedDaemon(fault)).Stop();
}

void Simulator::ClearFaults(const std::string& method) {
  if (!method.empty()) CheckPattern(method);
  faults.Clear(method);
  for (const Daemon which : {Daemon::kNetworkManager, Daemon::kDapi}) {
    if (daemons == nullptr) return;
    daemons->Of(which).Thaw(method);
    if (!faults.HasStop(which)) daemons->Of(which).Start();
  }
}

std::vector<Fault> Simulator::ListFaults() { return faults.List(); }

void Simulator::StopDaemon(Daemon which) {
  Fault fault;
  fault.method = Name(which) + std::string(".*");
  fault.kind = FaultKind::kStop;
  if (!faults.HasStop(which)) Inject(fault);
}

void Simulator::StartDaemon(Daemon which) {
  faults.ClearStop(which);
  if (daemons != nullptr) daemons->Of(which).Start();
}

void Simulator::DropConnections(Daemon which) {
  CutConnectionsTo(which == Daemon::kDapi ? dapi_port : network_manager_port);
}

void Simulator::Stop() { daemons.reset(); }

Builder::Builder() : state(OutOfTheBox(options)) {}

Builder& Builder::Channels(int tx, int rx) {
  options.tx_channels = tx;
  options.rx_channels = rx;
  state = OutOfTheBox(options);
  return *this;
}

Builder& Builder::StateFile(const std::string& file) {
  state = LoadState(file, state);
  return *this;
}

Builder& Builder::StateText(const std::string& text) {
  state = ReadState(text, "state", state);
  return *this;
}

Builder& Builder::With(const std::function<void(Device&)>& change) {
  change(state.device);
  return *this;
}

Builder& Builder::Inject(const std::string& fault) {
  state.faults.push_back(ParseFault(fault));
  return *this;
}

Builder& Builder::Ports(int network_manager, int dapi) {
  options.network_manager_port = network_manager;
  options.dapi_port = dapi;
  return *this;
}

Simulator Builder::Start() const { return {options, state}; }

}  // namespace simulator
