// A whole device in this process: the network-manager daemon and the Dante API
// daemon, each a gRPC server on loopback, over one model.
//
//   simulator::Simulator device;
//   setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
//   setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);
//
// With a state and faults of one's own, see Builder below.
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
#include <string>
#include <utility>
#include <vector>

#include "simulator/fault.h"
#include "simulator/faults.h"
#include "simulator/shared_device.h"
#include "simulator/state.h"

namespace simulator {

struct Options {
  int network_manager_port = 0;  // 0: a free port, chosen by the system
  int dapi_port = 0;             // 0: a free port, chosen by the system
  int tx_channels = 4;
  int rx_channels = 8;
};

class Simulator {
 public:
  /// Starts both daemons, out of the box (see factory_defaults.h). Throws
  /// std::runtime_error when a port cannot be had.
  explicit Simulator(const Options& options = {});
  /// Starts them with this state; the numbers of channels in the options do not
  /// matter.
  Simulator(const Options& options, const State& state);
  ~Simulator();

  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  /// "127.0.0.1:PORT", valid after Stop too.
  std::string NetworkManagerUrl() const;
  /// "127.0.0.1:PORT", valid after Stop too.
  std::string DapiUrl() const;

  /// Runs `use` with the model, a Device&, while no call is being answered, and
  /// returns a copy of what it returns. `use` must make no call to the device.
  template <class Use>
  auto WithDevice(Use&& use) {
    return device.With(std::forward<Use>(use));
  }

  /// The model and the faults that are left; see state.h for writing it.
  State CurrentState();

  // --- Faults (see fault.h) ---

  /// From the next call on. Throws BadFault.
  void Inject(const Fault& fault);
  /// The same, from the text form.
  void Inject(const std::string& fault) { Inject(ParseFault(fault)); }
  /// Takes back the faults told for exactly this method or pattern, all for "";
  /// answers the calls that they froze and starts a daemon that one has stopped.
  /// Throws BadFault, and std::runtime_error when a daemon's port is taken.
  void ClearFaults(const std::string& method = "");
  std::vector<Fault> ListFaults();

  /// Stops one daemon, whose open calls end; its port stays known.
  void StopDaemon(Daemon which);
  /// Starts it on the same port. Throws std::runtime_error when that is taken.
  void StartDaemon(Daemon which);
  /// Cuts every connection to one daemon, which serves on.
  void DropConnections(Daemon which);

  // --- Calls received ---

  /// The latest calls, oldest first; 10,000 at most.
  std::vector<ReceivedCall> Calls() const { return faults.Calls(); }
  void ForgetCalls() { faults.ForgetCalls(); }
  /// Waits until so many calls of the method, as Fault::method spells it, are
  /// among the recorded ones. False when the limit is over before.
  bool WaitForCalls(const std::string& method, std::size_t count = 1,
                    std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    return faults.WaitForCalls(method, count, limit);
  }

  /// Ends both daemons and the calls that are open; the model stays.
  void Stop();

 private:
  class Daemons;

  SharedDevice device;
  Faults faults;
  std::unique_ptr<Daemons> daemons;
  int network_manager_port;
  int dapi_port;
};

/// Shapes a device before it starts:
///
///   simulator::Simulator device = simulator::Builder()
///                                     .Channels(2, 4)
///                                     .With([](simulator::Device& it) { it.dante.name = "Hall"; })
///                                     .Inject("SetName:refuse")
///                                     .Start();
class Builder {
 public:
  /// A device out of the box.
  Builder();

  /// Out of the box with so many channels; before the other functions.
  Builder& Channels(int tx, int rx);
  /// The state of a file. Throws BadDocument, std::runtime_error.
  Builder& StateFile(const std::string& file);
  /// The state of a document in memory. Throws BadDocument.
  Builder& StateText(const std::string& text);
  /// Runs `change` with the model.
  Builder& With(const std::function<void(Device&)>& change);
  /// In the text form. Throws BadFault.
  Builder& Inject(const std::string& fault);
  /// 0, as without this: a free port.
  Builder& Ports(int network_manager, int dapi);

  /// Starts it; may be called again for another device of the same state.
  /// Throws std::runtime_error when a port cannot be had.
  Simulator Start() const;

 private:
  Options options;
  State state;
};

}  // namespace simulator
