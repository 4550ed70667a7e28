// The fixture of tests with a simulator in their own process.
#pragma once

#include "simulator/simulator.h"
#include "tests/simulator/stubs.h"

namespace support {

// The interfaces of the factory defaults.
inline constexpr int kPrimary = 1;    // lan0
inline constexpr int kControl = 2;    // lan1
inline constexpr int kSecondary = 3;  // lan2
inline constexpr int kService = 4;    // lan3

class SimulatedDevice : public testing::Test {
 protected:
  using NetworkStub = support::NetworkStub;
  using DanteStub = support::DanteStub;

  /// The reply to a call that must succeed.
  template <class Request, class Reply>
  Reply Ask(grpc::Status (NetworkStub::*method)(grpc::ClientContext*, const Request&, Reply*),
            const Request& request = {}) {
    return support::Ask(*stubs.network, method, request);
  }
  template <class Request, class Reply>
  Reply Ask(grpc::Status (DanteStub::*method)(grpc::ClientContext*, const Request&, Reply*),
            const Request& request = {}) {
    return support::Ask(*stubs.dante, method, request);
  }

  simulator::Simulator device;
  Stubs stubs{device.NetworkManagerUrl(), device.DapiUrl()};
};

}  // namespace support
