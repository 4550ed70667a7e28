// The demonstration, as a child, against simulated devices: honest ones, ones
// that lack something, and ones whose daemon says that it did what it did not.
#include <gmock/gmock.h>

#include <cstdlib>
#include <ostream>

#include "simulator/dante_service.h"
#include "simulator/factory.h"
#include "simulator/loopback_server.h"
#include "simulator/network_service.h"
#include "simulator/simulator.h"
#include "tests/support/child.h"

namespace {

using support::Finished;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

Finished RunDemo(const std::string& network_manager_url, const std::string& dapi_url) {
  setenv("network_manager_url", network_manager_url.c_str(), 1);
  setenv("grpc_dapi_url", dapi_url.c_str(), 1);
  return support::Run({NETWORKGRPC_DEMO});
}

Finished RunDemo(const simulator::Simulator& device) {
  return RunDemo(device.NetworkManagerUrl(), device.DapiUrl());
}

TEST(Demo, FactoryDevice_ShowsEverySection) {
  const simulator::Simulator device({0, 0, 2, 3});

  const Finished finished = RunDemo(device);

  EXPECT_THAT(finished.err, IsEmpty());
  EXPECT_THAT(finished.out, HasSubstr(R"(Interfaces
  Id  Name  Role     Mode     Address        Netmask        In use  MAC
  1   lan0  dante-0  dynamic  169.254.82.1   255.255.0.0    yes     02:54:41:52:00:01
  2   lan1  eth0     dynamic  192.168.10.57  255.255.255.0  yes     02:54:41:52:00:02
  3   lan2  -        dynamic  169.254.82.3   255.255.0.0    yes     02:54:41:52:00:03
  4   lan3  -        dynamic  10.77.0.20     255.255.0.0    yes     02:54:41:52:00:04

Switch modes
  Id  Name              Configured  In effect
  0   Switched          yes         yes
  1   Redundant         no          no
  2   Separate control  no          no

Host
  Host name        amplifier
  NTP server       pool.ntp.example
  DNS server       192.168.10.1
  Default gateway  192.168.10.1

Dante
  Device name     Amplifier-520001
  Model           Simulated amplifier 1.0.0
  Firmware        4.2.0.18
  Software        1.4.2
  Sample rate     48000 of 44100 48000 88200 96000
  Latency         1000
  AES67           off
  Transmission    on
  PTP slave only  no

Transmit channels: 2
  Id  Name
  1   01
  2   02

Receive channels: 3
  Id  Name  Takes its audio from
  1   01    -
  2   02    -
  3   03    -
)"));
}

TEST(Demo, DeviceInUse_ShowsRolesStoredModeAndLinks) {
  simulator::Simulator device({0, 0, 1, 2});
  device.WithDevice([](simulator::Device& it) {
    it.network.live_switch_mode = 1;
    it.network.stored_switch_mode = 2;
    it.network.stored_ntp.clear();
    it.network.interfaces[0].live = {};
    it.dante.tx_disabled = true;
    it.dante.aes67_available = false;
    it.dante.rx[0].name = "主輸出";
    simulator::Link stream;
    stream.raw.emplace().ip = "239.69.1.2";
    it.dante.links = {{1, stream}, {2, {"Stage-Box", "Bühne\n", {}, false}}};
  });

  const Finished finished = RunDemo(device);

  EXPECT_THAT(finished.out, HasSubstr("\n  1   lan0  dante-0  dynamic  -              -  "));
  EXPECT_THAT(finished.out, HasSubstr("\n  3   lan2  dante-1  "));
  EXPECT_THAT(finished.out, HasSubstr("\n  1   Redundant         no          yes\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  2   Separate control  yes         no\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  NTP server       -\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  Transmission    off\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  AES67           not available\n"));
  EXPECT_THAT(finished.out, HasSubstr("\n  Id  Name    Takes its audio from"
                                      "\n  1   主輸出  stream 239.69.1.2"
                                      "\n  2   02      Bühne? @ Stage-Box\n"));
}

TEST(Demo, FactoryDevice_ChangesIsVerifiedAndShowsBeforeAndAfter) {
  simulator::Simulator device;

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.err, IsEmpty());
  EXPECT_THAT(
      finished.out,
      EndsWith("Changes\n"
               "  Change                            Before                               After, "
               "read back\n"
               "  Name of transmit channel 1        01                                   Bühne "
               "links\n"
               "  Source of receive channel 1       -                                    Bühne "
               "links @ Amplifier-520001\n"
               "  Address of the control interface  192.168.10.57 255.255.255.0 dynamic  "
               "192.168.10.20 255.255.255.0 static\n"));
  device.WithDevice([](const simulator::Device& it) {
    EXPECT_EQ(it.dante.tx[0].name, "Bühne links");
    EXPECT_EQ(it.dante.links.at(1).device_name, "Amplifier-520001");
    EXPECT_EQ(it.dante.links.at(1).channel_name, "Bühne links");
    EXPECT_EQ(it.network.interfaces[1].live.ip, "192.168.10.20");
    EXPECT_EQ(it.network.interfaces[1].live.gateway, "192.168.10.1");
  });
}

TEST(Demo, RunTwice_ChangesSomethingTheSecondTimeToo) {
  simulator::Simulator device;
  ASSERT_EQ(RunDemo(device).status, 0);

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 0);
  device.WithDevice([](const simulator::Device& it) {
    EXPECT_EQ(it.dante.tx[0].name, "Bühne rechts");
    EXPECT_EQ(it.network.interfaces[1].live.ip, "192.168.10.21");
  });
}

TEST(Demo, NoTransmitChannel_TellsTheStepAndChangesNothing) {
  simulator::Simulator device({0, 0, 0, 1});

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.err,
            "networkgrpc-demo: FAILED: rename a transmit channel: expected a transmit channel, "
            "saw none\n");
  EXPECT_THAT(finished.out, Not(HasSubstr("Changes")));
}

TEST(Demo, NoReceiveChannel_TellsTheStepAndShowsTheChangeBefore) {
  simulator::Simulator device({0, 0, 1, 0});

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.err,
            "networkgrpc-demo: FAILED: subscribe a receive channel: expected a receive channel, "
            "saw none\n");
  EXPECT_THAT(finished.out, EndsWith("\n  Name of transmit channel 1  01      Bühne links\n"));
}

TEST(Demo, DaemonsAbsent_TellsTheFirstStep) {
  simulator::Simulator device;
  device.Stop();

  const Finished finished = RunDemo(device);

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_THAT(finished.err, EndsWith("networkgrpc-demo: FAILED: read the interfaces: expected the "
                                     "daemon to do it, saw a refusal, or no answer\n"));
}

TEST(Demo, Arguments_AreRefusedAndHelpIsGiven) {
  const Finished help = support::Run({NETWORKGRPC_DEMO, "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("Usage: networkgrpc-demo\n"));

  const Finished other = support::Run({NETWORKGRPC_DEMO, "10.0.0.1"});
  EXPECT_EQ(other.status, 2);
  EXPECT_THAT(other.out, IsEmpty());
  EXPECT_THAT(other.err, HasSubstr("Usage: networkgrpc-demo\n"));
}

// --- Daemons that do not do what they say --------------------------------------

enum class Fault {
  kForgetsName,
  kRefusesName,
  kForgetsLink,
  kForgetsReload,
};

struct FaultyStep {
  std::string name;
  Fault fault;
  std::string told;
};

std::ostream& operator<<(std::ostream& out, const FaultyStep& step) { return out << step.name; }

class FaultyDante : public simulator::DanteService {
 public:
  FaultyDante(simulator::SharedDevice& shared, Fault its_fault)
      : DanteService(shared), fault(its_fault) {}

  grpc::Status SetTxChannelName(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::Channel* request,
                                ostrevan::grpcdapi::Success* reply) override {
    if (fault != Fault::kForgetsName && fault != Fault::kRefusesName)
      return DanteService::SetTxChannelName(context, request, reply);
    reply->set_success(fault == Fault::kForgetsName);
    return grpc::Status::OK;
  }
  grpc::Status SetRxChannelLink(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::LinkInfo* request,
                                ostrevan::grpcdapi::Success* reply) override {
    if (fault != Fault::kForgetsLink)
      return DanteService::SetRxChannelLink(context, request, reply);
    reply->set_success(true);
    return grpc::Status::OK;
  }

 private:
  Fault fault;
};

class FaultyNetwork : public simulator::NetworkService {
 public:
  FaultyNetwork(simulator::SharedDevice& shared, Fault its_fault)
      : NetworkService(shared), fault(its_fault) {}

  grpc::Status ReloadNetworkConfig(grpc::ServerContext* context,
                                   const ostrevan::common::Empty* request,
                                   ostrevan::networkmanager::Success* reply) override {
    if (fault != Fault::kForgetsReload)
      return NetworkService::ReloadNetworkConfig(context, request, reply);
    reply->set_success(true);
    return grpc::Status::OK;
  }

 private:
  Fault fault;
};

class DemoOnFaultyDevice : public testing::TestWithParam<FaultyStep> {};

TEST_P(DemoOnFaultyDevice, TellsStepExpectedAndSeen) {
  simulator::SharedDevice device(simulator::FactoryDevice(1, 1));
  FaultyNetwork network(device, GetParam().fault);
  FaultyDante dante(device, GetParam().fault);
  const simulator::LoopbackServer network_server(network, 0);
  const simulator::LoopbackServer dante_server(dante, 0);

  const Finished finished = RunDemo("127.0.0.1:" + std::to_string(network_server.Port()),
                                    "127.0.0.1:" + std::to_string(dante_server.Port()));

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.err, EndsWith("networkgrpc-demo: FAILED: " + GetParam().told + "\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, DemoOnFaultyDevice,
    testing::Values(
        FaultyStep{"NameForgotten", Fault::kForgetsName,
                   "rename a transmit channel: expected \"Bühne links\", saw \"01\""},
        FaultyStep{"NameRefused", Fault::kRefusesName,
                   "rename a transmit channel: expected the daemon to do it, saw a refusal, or no "
                   "answer"},
        FaultyStep{"LinkForgotten", Fault::kForgetsLink,
                   "subscribe a receive channel: expected \"Bühne links @ Amplifier-520001\", saw "
                   "\"-\""},
        FaultyStep{"ReloadForgotten", Fault::kForgetsReload,
                   "set the control interface's address: expected \"192.168.10.20 255.255.255.0 "
                   "static\", saw \"192.168.10.57 255.255.255.0 static\""}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
