// The demo as a child process, against simulated devices.
#include <gmock/gmock.h>

#include <cstdlib>

#include "ostrevan/grpcdapi.pb.h"
#include "simulator/factory_defaults.h"
#include "simulator/method_table.h"
#include "simulator/simulator.h"
#include "support/device.h"
#include "support/run_program.h"

namespace {

using support::Finished;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

Finished RunDemo(const simulator::Simulator& device, const std::string& dapi_url) {
  setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
  setenv("grpc_dapi_url", dapi_url.c_str(), 1);
  return support::Run({NETWORKGRPC_DEMO});
}

Finished RunDemo(const simulator::Simulator& device) { return RunDemo(device, device.DapiUrl()); }

// The three settings in the simulator's model.
std::vector<std::string> Settings(simulator::Simulator& device) {
  return device.WithDevice([](const simulator::Device& it) {
    return std::vector<std::string>{it.network.hostname, it.dante.tx.at(0).name,
                                    std::to_string(it.dante.latency)};
  });
}

TEST(Demo, FactoryDevice_PrintsAndRestoresEverySetting) {
  simulator::Simulator device;
  const auto before = Settings(device);

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.err, IsEmpty());
  EXPECT_EQ(finished.out, R"(Host name: "amplifier"
  set to "stage-left", read back "stage-left"
  set to "amplifier", read back "amplifier"
Label of the first transmit channel: "01"
  set to "Bühne links", read back "Bühne links"
  set to "01", read back "01"
Latency: 1000
  set to 2000, read back 2000
  set to 1000, read back 1000
)");
  EXPECT_EQ(Settings(device), before);
}

TEST(Demo, SettingsHaveTheNewValues_SetsOthersAndEscapesControlCharacters) {
  simulator::Simulator device({0, 0, 1, 0});
  device.WithDevice([](simulator::Device& it) {
    it.network.hostname = "stage-left";
    it.dante.tx[0].name = "\x1b[2J";
    it.dante.latency = 2000;
  });

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, HasSubstr("\n  set to \"stage-right\", read back \"stage-right\"\n"));
  EXPECT_THAT(finished.out, HasSubstr("channel: \"?[2J\"\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  set to 5000, read back 5000\n"));
}

TEST(Demo, RestoringIsRejected_ExitsWithOneAndLeavesTheNewValueOnTheDevice) {
  const std::vector<std::string> methods{"SetHostname", "SetTxChannelName", "SetLatency"};
  const std::vector<std::string> values{"stage-left", "Bühne links", "2000"};
  for (std::size_t i = 0; i < methods.size(); ++i) {
    simulator::Simulator device;
    device.Inject(methods[i] + ":delay=1,times=1");  // the first call is carried out
    device.Inject(methods[i] + ":reject");

    const Finished finished = RunDemo(device);

    EXPECT_EQ(finished.status, 1) << methods[i];
    EXPECT_THAT(finished.err, EndsWith(" cannot be set\n"));
    EXPECT_EQ(Settings(device).at(i), values[i]);
  }
}

TEST(Demo, ChangeIsRejected_ExitsWithOneAndChangesNothingElse) {
  simulator::Simulator device;
  const auto before = Settings(device);
  device.Inject("SetTxChannelName:reject");

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.err, HasSubstr("networkgrpc-demo: Label of the first transmit channel: "
                                      "\"Bühne links\" cannot be set\n"));
  EXPECT_THAT(finished.out, EndsWith("\nLabel of the first transmit channel: \"01\"\n"));
  EXPECT_EQ(Settings(device), before);
}

TEST(Demo, ChangeIsIgnored_ExitsWithOneAndReportsBothValues) {
  const simulator::Simulator device;
  simulator::SharedDevice dante_device(simulator::FactoryDefaults(1, 1));
  support::ScriptedDaemon dante;
  for (const simulator::Method& method : MethodsOf(simulator::Daemon::kDapi))
    dante.ScriptEach(support::DapiPath(method.name), [&](const std::string& request) {
      support::Answer answer;
      answer.status = method.answer(dante_device, request, answer.bytes);
      return answer;
    });
  ostrevan::grpcdapi::Success success;
  success.set_success(true);
  dante.Script(support::DapiPath("SetLatency"), support::Reply(success));

  const Finished finished = RunDemo(device, dante.Url());

  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.err, "networkgrpc-demo: Latency: 2000 was set, but 1000 was read back\n");
  EXPECT_THAT(finished.out, HasSubstr("\n  set to 2000, read back 1000\n"));
}

TEST(Demo, NoTransmitChannel_ExitsWithOneAndNamesTheSetting) {
  const simulator::Simulator device({0, 0, 0, 1});

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.err,
            "networkgrpc-demo: Label of the first transmit channel: cannot be read\n");
}

TEST(Demo, DaemonsUnreachable_ExitsWithOneAndPrintsNoSetting) {
  simulator::Simulator device;
  device.Stop();

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_THAT(finished.err, EndsWith("networkgrpc-demo: Host name: cannot be read\n"));
}

TEST(Demo, AnyArgument_ExitsWithOneAndCallsNoDaemon) {
  const simulator::Simulator device;
  setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);

  const Finished finished = support::Run({NETWORKGRPC_DEMO, "--help"});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.err, StartsWith("usage: "));
  EXPECT_THAT(device.Calls(), IsEmpty());
}

}  // namespace
