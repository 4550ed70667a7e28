#include "simulator/simulator.h"

#include <array>
#include <stdexcept>

#include "simulator/connections.h"
#include "simulator/dispatcher.h"
#include "simulator/factory_defaults.h"
#include "simulator/local_server.h"
#include "simulator/state.h"
#include "simulator/state_path.h"

namespace simulator {
namespace {

// One daemon, which can be stopped and started again where it listened.
class SimulatedDaemon {
 public:
  SimulatedDaemon(Daemon which, SharedDevice& shared, Endpoint wanted)
      : daemon(which), device(shared), endpoint(std::move(wanted)) {
    Start();
    endpoint = running->server.Where();
  }

  Daemon Which() const { return daemon; }
  std::string Url() const { return endpoint.Url(); }

  void Start() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (running != nullptr || has_ended) return;
    running = std::make_unique<Running>(daemon, device, endpoint);
  }
  void Stop() {
    const std::lock_guard<std::mutex> lock(mutex);
    running.reset();
  }
  // Restarts it if faults have changed what it does as a whole.
  void Update() {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      if (running == nullptr || running->idle_limit_ms == device.faults.IdleLimit(daemon)) return;
      running.reset();
    }
    Start();
  }
  // Stops it for good.
  void End() {
    const std::lock_guard<std::mutex> lock(mutex);
    running.reset();
    has_ended = true;
  }
  void Thaw(const std::string& pattern) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (running != nullptr) running->dispatcher.Thaw(pattern);
  }

 private:
  // A generic service can be registered with one server only.
  struct Running {
    Running(Daemon which, SharedDevice& shared, const Endpoint& wanted)
        : idle_limit_ms(shared.faults.IdleLimit(which)),
          dispatcher(which, shared),
          server(dispatcher, wanted, {shared.backend != nullptr, idle_limit_ms}) {}

    const std::uint32_t idle_limit_ms;
    Dispatcher dispatcher;
    LocalServer server;
  };

  const Daemon daemon;
  SharedDevice& device;
  Endpoint endpoint;  // does not change after the first start
  std::mutex mutex;   // guards the members below
  std::unique_ptr<Running> running;
  bool has_ended = false;
};

}  // namespace

class Simulator::Implementation {
 public:
  Implementation(const Options& options, const Device& initial, const Hooks& hooks,
                 const std::shared_ptr<Backend>& backend,
                 const std::shared_ptr<AudioNetwork>& network)
      : device(initial, hooks, backend, network),
        network_manager(
            Daemon::kNetworkManager, device,
            {options.network_manager_port, options.network_manager_socket, options.socket_mode}),
        dapi(Daemon::kDapi, device, {options.dapi_port, options.dapi_socket, options.socket_mode}) {
  }

  SimulatedDaemon& Of(Daemon which) { return which == Daemon::kDapi ? dapi : network_manager; }
  std::array<SimulatedDaemon*, 2> Daemons() { return {&network_manager, &dapi}; }

  SharedDevice device;
  SimulatedDaemon network_manager;
  SimulatedDaemon dapi;
};

Simulator::Simulator(const Options& options)
    : Simulator(options, FactoryDefaults(options.tx_channels, options.rx_channels), {}) {}

Simulator::Simulator(const Options& options, const Device& device, const std::vector<Fault>& faults,
                     const Surroundings& around)
    : implementation(std::make_unique<Implementation>(options, device, around.hooks, around.backend,
                                                      around.network)) {
  for (const Fault& fault : faults) Inject(fault);
}

Simulator::~Simulator() = default;
Simulator::Simulator(Simulator&&) noexcept = default;
Simulator& Simulator::operator=(Simulator&&) noexcept = default;

std::string Simulator::NetworkManagerUrl() const { return implementation->network_manager.Url(); }

std::string Simulator::DapiUrl() const { return implementation->dapi.Url(); }

std::pair<std::unique_lock<std::mutex>, Device&> Simulator::Lock() {
  return implementation->device.Lock();
}

State Simulator::CurrentState() {
  return {WithDevice([](const Device& it) { return it; }), ListFaults()};
}

std::string Simulator::StateJson() {
  CheckState();
  return WriteState(CurrentState());
}

void Simulator::SaveState(const std::string& file) { simulator::SaveState(file, CurrentState()); }

void Simulator::CheckState() const {
  if (implementation->device.backend != nullptr)
    throw std::runtime_error("no state: the answers come from a recording or from real daemons");
}

void Simulator::Set(const std::vector<StateChange>& changes) {
  CheckState();
  const auto [lock, device] = Lock();
  Json document = ToJson({device, {}});
  for (const StateChange& change : changes) Change(document, change);
  try {
    device = ReadState(document.dump(), "", {device, {}}).device;
  } catch (const BadDocument& bad) {
    const std::string why = bad.what();  // ":1: PATH: reason"
    throw std::runtime_error("cannot set " + why.substr(why.find(' ') + 1));
  }
}

void Simulator::Load(const std::string& document) {
  CheckState();
  const state_document::Document read(document, "state");
  const bool has_faults = read.Root().contains("faults");
  State state;
  {
    const auto [lock, device] = Lock();
    state = ReadState(read, {device, {}});
    device = state.device;
  }
  if (has_faults) ClearFaults();
  for (const Fault& fault : state.faults) Inject(fault);
}

void Simulator::Inject(const Fault& fault) {
  Check(fault);
  implementation->device.faults.Add(fault);
  for (SimulatedDaemon* daemon : implementation->Daemons())
    if (Stops(fault, daemon->Which()))
      daemon->Stop();
    else
      daemon->Update();
}

void Simulator::ClearFaults(const std::string& method) {
  if (!method.empty()) CheckPattern(method);
  implementation->device.faults.Clear(method);
  for (SimulatedDaemon* daemon : implementation->Daemons()) {
    daemon->Thaw(method);
    if (!implementation->device.faults.HasStop(daemon->Which())) daemon->Start();
    daemon->Update();
  }
}

std::vector<Fault> Simulator::ListFaults() { return implementation->device.faults.List(); }

void Simulator::StopDaemon(Daemon which) {
  Fault fault;
  fault.method = FullName(which, "*");
  fault.kind = FaultKind::kStop;
  if (!implementation->device.faults.HasStop(which)) Inject(fault);
}

void Simulator::StartDaemon(Daemon which) {
  implementation->device.faults.ClearStop(which);
  implementation->Of(which).Start();
}

void Simulator::RestartDaemon(Daemon which) {
  StopDaemon(which);
  StartDaemon(which);
}

void Simulator::DropConnections(Daemon which) {
  DropConnectionsTo(implementation->Of(which).Url());
}

std::vector<ReceivedCall> Simulator::Calls() const { return implementation->device.calls.Calls(); }

void Simulator::ForgetCalls() { implementation->device.calls.Clear(); }

std::size_t Simulator::CountCalls(const std::string& method) const {
  CheckPattern(method);
  return implementation->device.calls.Count(method);
}

bool Simulator::WaitForCalls(const std::string& method, std::size_t count,
                             std::chrono::milliseconds limit) {
  return implementation->device.calls.WaitFor(method, count, limit);
}

void Simulator::Stop() {
  for (SimulatedDaemon* daemon : implementation->Daemons()) daemon->End();
}

Builder::Builder() { Channels(options.tx_channels, options.rx_channels); }

Builder& Builder::Channels(int tx, int rx) {
  device = FactoryDefaults(tx, rx);
  return *this;
}

Builder& Builder::StateFile(const std::string& file) {
  const State state = LoadState(file, {device, faults});
  device = state.device;
  faults = state.faults;
  return *this;
}

Builder& Builder::StateJson(const std::string& document) {
  const State state = ReadState(document, "state", {device, faults});
  device = state.device;
  faults = state.faults;
  return *this;
}

Builder& Builder::With(const std::function<void(Device&)>& change) {
  change(device);
  return *this;
}

Builder& Builder::Inject(const Fault& fault) {
  Check(fault);
  faults.push_back(fault);
  return *this;
}

Builder& Builder::Ports(int network_manager, int dapi) {
  options.network_manager_port = network_manager;
  options.dapi_port = dapi;
  return *this;
}

Builder& Builder::Sockets(const std::string& network_manager, const std::string& dapi,
                          unsigned mode) {
  options.network_manager_socket = network_manager;
  options.dapi_socket = dapi;
  options.socket_mode = mode;
  return *this;
}

Builder& Builder::With(const Hooks& wanted) {
  around.hooks = wanted;
  return *this;
}

Builder& Builder::AnswerWith(std::shared_ptr<Backend> wanted) {
  around.backend = std::move(wanted);
  return *this;
}

Builder& Builder::Join(std::shared_ptr<AudioNetwork> network) {
  around.network = std::move(network);
  return *this;
}

Simulator Builder::Start() const { return {options, device, faults, around}; }

}  // namespace simulator
