// A whole device in this process: the network-manager daemon and the Dante API
// daemon, each a gRPC server on loopback, over one model.
//
//   simulator::Simulator device;
//   setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
//   setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);
//
// Lifetime: serves from construction until Stop or destruction; nothing outlives
//   the object, and nothing is kept for the next one. Several may run at once.
// Threads: every function may be called from several threads at once, except
//   Stop, which one thread calls.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "simulator/shared_device.h"

namespace simulator {

struct Options {
  int network_manager_port = 0;  // 0: a free port, chosen by the system
  int dapi_port = 0;             // 0: a free port, chosen by the system
  int tx_channels = 4;
  int rx_channels = 8;
};

class Simulator {
 public:
  /// Starts both daemons, out of the box (see factory.h). Throws
  /// std::runtime_error when a port cannot be had.
  explicit Simulator(const Options& options = {});
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

  /// Ends both daemons and the calls that are open; the model stays.
  void Stop();

 private:
  class Daemons;

  SharedDevice device;
  std::unique_ptr<Daemons> daemons;
  int network_manager_port;
  int dapi_port;
};

}  // namespace simulator
