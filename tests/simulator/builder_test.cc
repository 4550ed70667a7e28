// The builder, with which tests of applications start.
#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdio>
#include <optional>

#include "tests/simulator/simulated_device.h"

namespace {

using simulator::Builder;
using simulator::Device;
using simulator::Simulator;
using support::Ask;
using support::DanteStub;
using support::NetworkStub;
using support::Stubs;
using testing::IsEmpty;
using testing::SizeIs;

int PortOf(const std::string& url) { return std::stoi(url.substr(url.rfind(':') + 1)); }

TEST(Builder, NothingSet_HasTheFactoryDefaults) {
  Simulator built = Builder().Start();
  Simulator plain;

  EXPECT_EQ(built.StateJson(), plain.StateJson());
  EXPECT_NE(built.DapiUrl(), built.NetworkManagerUrl());
  EXPECT_NE(built.DapiUrl(), plain.DapiUrl());
}

TEST(Builder, EverythingSet_ClientsReadIt) {
  Simulator device = Builder()
                         .Channels(2, 3)
                         .StateJson(R"({"schema": 1, "network": {"hostname": "hall"}})")
                         .With([](Device& it) { it.dante.name = "Hall"; })
                         .Inject("SetName:reject,times=1")
                         .Start();
  const Stubs stubs(device.NetworkManagerUrl(), device.DapiUrl());

  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetTxChannels).channels_size(), 2);
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetRxChannels).channels_size(), 3);
  EXPECT_EQ(Ask(*stubs.network, &NetworkStub::GetHostname).hostname(), "hall");
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetName).name(), "Hall");
  ostrevan::grpcdapi::Name name;
  name.set_name("Stage");
  EXPECT_FALSE(Ask(*stubs.dante, &DanteStub::SetName, name).success());
  EXPECT_TRUE(Ask(*stubs.dante, &DanteStub::SetName, name).success());
  EXPECT_TRUE(device.WaitForCalls("SetName", 2));
}

TEST(Builder, StartedTwice_TheDevicesShareNothing) {
  const Builder builder = Builder().With([](Device& it) { it.dante.name = "Hall"; });
  Simulator one = builder.Start();
  Simulator other = builder.Start();
  one.WithDevice([](Device& it) { it.dante.name = "Stage"; });
  one.Inject("*:freeze");

  const Stubs stubs(other.NetworkManagerUrl(), other.DapiUrl());
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetName).name(), "Hall");
  EXPECT_THAT(one.Calls(), IsEmpty());
  EXPECT_THAT(other.Calls(), SizeIs(1));
}

TEST(Builder, PortsSet_ServesOnThem) {
  std::optional<Simulator> before(std::in_place);
  const int network_manager = PortOf(before->NetworkManagerUrl());
  const int dapi = PortOf(before->DapiUrl());
  EXPECT_THROW(Builder().Ports(network_manager, dapi).Start(), std::runtime_error);
  before.reset();

  const Simulator device = Builder().Ports(network_manager, dapi).Start();

  EXPECT_EQ(PortOf(device.NetworkManagerUrl()), network_manager);
  EXPECT_EQ(PortOf(device.DapiUrl()), dapi);
}

TEST(Builder, StateFile_HasTheStateThatAnotherDeviceSaved) {
  Simulator first = Builder().Channels(1, 1).Inject("GetName:drop").Start();
  const std::string file = testing::TempDir() + "builder_test." + std::to_string(getpid());
  first.SaveState(file);

  Simulator second = Builder().StateFile(file).Start();
  std::remove(file.c_str());

  EXPECT_EQ(second.StateJson(), first.StateJson());
  ASSERT_THAT(second.ListFaults(), SizeIs(1));
  EXPECT_EQ(ToString(second.ListFaults().at(0)), "GetName:drop");
  EXPECT_THROW(Builder().StateFile(file), std::runtime_error);
}

TEST(Builder, InvalidFaultOrState_IsRejectedAtOnce) {
  EXPECT_THROW(Builder().Inject("GetBogus:drop"), simulator::BadFault);
  EXPECT_THROW(Builder().StateJson("{}"), std::runtime_error);
}

}  // namespace
