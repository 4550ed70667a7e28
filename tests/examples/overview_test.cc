// The two short examples as child processes, against a simulated device.
#include <gmock/gmock.h>

#include <cstdlib>

#include "simulator/simulator.h"
#include "support/run_program.h"

namespace {

using support::Finished;
using testing::IsEmpty;

class Overview : public testing::Test {
 protected:
  Overview() {
    setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
    setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);
  }

  simulator::Simulator device{{0, 0, 4, 2}};
};

TEST_F(Overview, InCxx_PrintsNamesSampleRateAndChannels) {
  device.WithDevice([](simulator::Device& it) { it.dante.rx[1].name = "Bühne"; });

  const Finished finished = support::Run({NETWORKGRPC_OVERVIEW});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out,
            "Amplifier-520001 on amplifier, 48000 Hz\n"
            "input 1: 01\n"
            "input 2: Bühne\n");
  EXPECT_THAT(finished.err, IsEmpty());
}

TEST_F(Overview, InC_PrintsControlInterfaceAndSwitchMode) {
  device.WithDevice([](simulator::Device& it) { it.network.live_switch_mode = 2; });

  const Finished finished = support::Run({NETWORKGRPC_OVERVIEW_C});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out,
            "control 192.168.10.57 netmask 255.255.255.0 MAC 02:54:41:52:00:02\n"
            "switch mode 2\n");
  EXPECT_THAT(finished.err, IsEmpty());
}

TEST_F(Overview, DaemonsUnreachable_BothExitWithOneAndPrintNothing) {
  device.Stop();

  for (const char* program : {NETWORKGRPC_OVERVIEW, NETWORKGRPC_OVERVIEW_C}) {
    const Finished finished = support::Run({program});

    EXPECT_EQ(finished.status, 1) << program;
    EXPECT_THAT(finished.out, IsEmpty()) << program;
  }
}

}  // namespace
