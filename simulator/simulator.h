// A whole device in this process: the network-manager daemon and the Dante API
// daemon, each a gRPC server on loopback or on a Unix socket, with one model of the
// device.
//
//   simulator::Simulator device;
//   setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
//   setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);
//
// For a device with other settings or with faults, see Builder below.
//
// Lifetime: serves from construction until Stop or destruction; nothing outlives
//   the object, and nothing is kept for the next one. Several may run at once.
// Threads: every function may be called from several threads at once, except
//   Stop, which one thread calls.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/audio_network.h"
#include "simulator/call_log.h"
#include "simulator/fault.h"
#include "simulator/hooks.h"
#include "simulator/model.h"
#include "simulator/state_change.h"

namespace simulator {

class Backend;
struct State;

struct Options {
  int network_manager_port = 0;  // 0: a free port, chosen by the system
  int dapi_port = 0;             // 0: a free port, chosen by the system
  int tx_channels = 4;
  int rx_channels = 8;
  std::string network_manager_socket = {};  // path of a Unix socket, instead of the port
  std::string dapi_socket = {};             // path of a Unix socket, instead of the port
  unsigned socket_mode = 0600;              // of both sockets
};

/// What a device is connected to.
struct Surroundings {
  Hooks hooks = {};
  std::shared_ptr<Backend> backend = {};       // null: the model answers
  std::shared_ptr<AudioNetwork> network = {};  // null: one of its own
};

class Simulator {
 public:
  /// Starts both daemons with the factory defaults. Throws std::runtime_error if
  /// one cannot listen on its port or socket.
  explicit Simulator(const Options& options = {});
  ~Simulator();

  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;
  Simulator(Simulator&& other) noexcept;
  Simulator& operator=(Simulator&& other) noexcept;

  /// "127.0.0.1:PORT" or "unix:PATH", an absolute path; valid after Stop too.
  std::string NetworkManagerUrl() const;
  /// The same for the Dante API daemon.
  std::string DapiUrl() const;

  /// Runs `use` with the model, a Device&, while no call is answered, and returns
  /// a copy of what it returns. `use` must not call the device.
  template <class Use>
  auto WithDevice(Use&& use) {
    const auto [lock, device] = Lock();
    return std::forward<Use>(use)(device);
  }

  /// The state document (docs/simulator.md): the model and the faults.
  std::string StateJson();
  /// Writes the state document to a file, which is replaced as a whole or not at
  /// all. Throws std::runtime_error.
  void SaveState(const std::string& file);

  /// Changes members of the state document, all or, if one cannot be changed, none.
  /// Calls meet the old or the new state. Throws std::runtime_error, which names the
  /// culprit.
  void Set(const std::vector<StateChange>& changes);
  /// Takes over a state document; members that it lacks keep their values. Throws
  /// std::runtime_error.
  void Load(const std::string& document);

  // --- Faults (see fault.h) ---

  /// Acts from the next call on. Throws BadFault.
  void Inject(const Fault& fault);
  /// The same, from the string form.
  void Inject(const std::string& fault) { Inject(ParseFault(fault)); }
  /// Removes the faults given for exactly this method or pattern; "" removes all.
  /// Answers the calls that they froze and starts a daemon that one has stopped.
  /// Throws BadFault, and std::runtime_error if a daemon cannot listen.
  void ClearFaults(const std::string& method = "");
  std::vector<Fault> ListFaults();

  /// Stops one daemon, whose open calls end; its port stays the same.
  void StopDaemon(Daemon which);
  /// Starts it on the same port. Throws std::runtime_error if that is in use.
  void StartDaemon(Daemon which);
  /// Stops and starts it; its state stays.
  void RestartDaemon(Daemon which);
  /// Drops every connection to one daemon, which continues to serve.
  void DropConnections(Daemon which);

  // --- Calls received ---

  /// The latest calls, oldest first: at most 10,000, and at most 16 MiB of them,
  /// but always the latest.
  std::vector<ReceivedCall> Calls() const;
  void ForgetCalls();
  /// The recorded calls of the method, in the form of Fault::method. Throws BadFault if
  /// it matches no method.
  std::size_t CountCalls(const std::string& method) const;
  /// Waits until at least `count` calls of the method, in the form of
  /// Fault::method, are recorded. False if the limit is reached first.
  bool WaitForCalls(const std::string& method, std::size_t count = 1,
                    std::chrono::milliseconds limit = std::chrono::seconds(20));

  /// Ends both daemons and the open calls; the model stays.
  void Stop();

 private:
  friend class Builder;
  class Implementation;

  Simulator(const Options& options, const Device& device, const std::vector<Fault>& faults,
            const Surroundings& around = {});
  void CheckState() const;
  State CurrentState();
  std::pair<std::unique_lock<std::mutex>, Device&> Lock();

  std::unique_ptr<Implementation> implementation;
};

/// Prepares a device before it starts:
///
///   simulator::Simulator device = simulator::Builder()
///                                     .Channels(2, 4)
///                                     .With([](simulator::Device& it) { it.dante.name = "Hall"; })
///                                     .Inject("SetName:reject")
///                                     .Start();
class Builder {
 public:
  /// A device with the factory defaults.
  Builder();

  /// The factory defaults with these numbers of channels. Replaces the settings
  /// made before.
  Builder& Channels(int tx, int rx);
  /// Reads a state document; members that it lacks keep their values. Throws
  /// std::runtime_error, "FILE:LINE: reason" for an invalid document.
  Builder& StateFile(const std::string& file);
  /// The same from a string, whose name in errors is "state".
  Builder& StateJson(const std::string& document);
  /// Runs `change` with the model.
  Builder& With(const std::function<void(Device&)>& change);
  Builder& With(const Hooks& wanted);
  /// Devices in one network see each other's names and transmit channels. Their models
  /// are locked together.
  Builder& Join(std::shared_ptr<AudioNetwork> network);
  /// Takes the answers from elsewhere (backend.h); the device has no state then.
  Builder& AnswerWith(std::shared_ptr<Backend> wanted);
  /// Throws BadFault.
  Builder& Inject(const Fault& fault);
  /// The same, from the string form.
  Builder& Inject(const std::string& fault) { return Inject(ParseFault(fault)); }
  /// 0, the default: a free port.
  Builder& Ports(int network_manager, int dapi);
  /// Daemons on Unix sockets: their paths, "" for a port, and the mode of both. The
  /// socket of a process that was killed is replaced.
  Builder& Sockets(const std::string& network_manager, const std::string& dapi,
                   unsigned mode = 0600);

  /// Starts the device; may be called again for another one with the same state.
  /// Throws std::runtime_error if a daemon cannot listen on its port.
  Simulator Start() const;

 private:
  Options options;
  Device device;
  std::vector<Fault> faults;
  Surroundings around;
};

}  // namespace simulator
