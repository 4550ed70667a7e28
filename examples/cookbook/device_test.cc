// Test an application with a simulated device in the test's own process, with GoogleTest.
//
// Link NetworkgRPC::Simulator. The library reads its endpoints once per process, so all tests of a
// program share one device: give each test a known state and remove its faults.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "DantegRPC.h"
#include "simulator/simulator.h"

namespace {

// The code under test: gives the device a name, and a second attempt if the first fails.
bool Rename(const std::string& name) {
  return DantegRPC::SetName(name) || DantegRPC::SetName(name);
}

class Device : public testing::Test {
 protected:
  static simulator::Simulator& Get() {
    static simulator::Simulator device = [] {
      simulator::Simulator started;  // listens on free ports
      setenv("network_manager_url", started.NetworkManagerUrl().c_str(), 1);
      setenv("grpc_dapi_url", started.DapiUrl().c_str(), 1);
      return started;
    }();
    return device;
  }

  Device() {
    Get().ClearFaults();
    Get().ForgetCalls();
    Get().WithDevice([](simulator::Device& it) { it.dante.name = "Amplifier"; });
  }

  static std::string Name() {
    return Get().WithDevice([](simulator::Device& it) { return it.dante.name; });
  }
};

TEST_F(Device, Rename_RejectedOnce_TriesAgain) {
  Get().Inject("SetName:reject,times=1");
  EXPECT_TRUE(Rename("Hall"));
  EXPECT_EQ(Name(), "Hall");
  EXPECT_EQ(Get().Calls().size(), 2U);
}

TEST_F(Device, Rename_DaemonStopped_Fails) {
  Get().StopDaemon(simulator::Daemon::kDapi);
  EXPECT_FALSE(Rename("Hall"));
  Get().StartDaemon(simulator::Daemon::kDapi);
  EXPECT_EQ(Name(), "Amplifier");
}

}  // namespace
