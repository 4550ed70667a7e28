// The simulator and the library in one process, as in tests of applications.
#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "tests/simulator/simulated_device.h"

namespace {

using testing::SizeIs;

class InProcess : public support::SimulatedDevice {
 protected:
  InProcess() {
    setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
    setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);
  }
};

TEST_F(InProcess, Facades_ControlInterfaceSetStatic_SeeItInUse) {
  NetworkgRPC::InterfaceInfo wanted;
  wanted.mode = 1;
  wanted.ip = "192.168.10.20";
  wanted.netmask = "255.255.255.0";

  ASSERT_TRUE(NetworkgRPC::SetControlIP(wanted, true));

  std::vector<NetworkgRPC::InterfaceInfo> seen;
  ASSERT_TRUE(NetworkgRPC::GetControlInterfacesInfo(seen));
  ASSERT_THAT(seen, SizeIs(1));
  EXPECT_EQ(seen[0].mode, 1);
  EXPECT_EQ(seen[0].ip, wanted.ip);
  EXPECT_EQ(seen[0].mac, "02:54:41:52:00:02");
  EXPECT_TRUE(seen[0].active);
}

TEST_F(InProcess, Facades_SwitchModeWithBothDantePorts_SeeTwoDanteInterfaces) {
  std::vector<NetworkgRPC::InterfaceInfo> one;
  ASSERT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(one));
  ASSERT_THAT(one, SizeIs(1));

  ASSERT_TRUE(NetworkgRPC::SetSwitchMode(2));  // the mode that is listed with id 1
  ASSERT_TRUE(DantegRPC::Reboot());

  std::vector<NetworkgRPC::InterfaceInfo> both;
  ASSERT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(both));
  ASSERT_THAT(both, SizeIs(2));
  EXPECT_EQ(both[1].ip, "169.254.82.3");
}

TEST_F(InProcess, WithDevice_ModelChanged_NextCallReadsIt) {
  device.WithDevice([](simulator::Device& it) { it.dante.name = "changed"; });

  std::string name;
  EXPECT_TRUE(DantegRPC::GetName(name));
  EXPECT_EQ(name, "changed");
}

TEST_F(InProcess, WithDevice_ClientsAndTestAtOnce_EveryChangeIsKept) {
  constexpr int kClients = 8;  // as many as there are receive channels
  constexpr int kRounds = 20;
  std::vector<std::thread> clients;
  for (int id = 1; id <= kClients; ++id)
    clients.emplace_back([this, id] {
      for (int round = 0; round < kRounds; ++round) {
        ostrevan::grpcdapi::LinkInfo link;
        link.set_id(id);
        Ask(&DanteStub::SetRxChannelLink, link);  // unsubscribes
        link.set_devicename("Stage-Box");
        link.set_channelname(std::to_string(round));
        Ask(&DanteStub::SetRxChannelLink, link);
        device.WithDevice([](simulator::Device& it) {
          const std::uint32_t before = it.dante.latency;
          std::this_thread::yield();  // lets another thread run in between
          it.dante.latency = before + 1;
        });
      }
    });
  for (std::thread& client : clients) client.join();

  device.WithDevice([&](const simulator::Device& it) {
    EXPECT_EQ(it.dante.links.size(), kClients);
    for (const auto& [id, link] : it.dante.links) EXPECT_EQ(link.channel_name, "19") << id;
    EXPECT_EQ(it.dante.latency, 1000U + kClients * kRounds);
  });
}

TEST_F(InProcess, Stop_EndsBothDaemonsAndKeepsTheModel) {
  Ask(&DanteStub::GetName);
  Ask(&NetworkStub::GetHostname);
  device.WithDevice([](simulator::Device& it) { it.network.hostname = "kept"; });

  device.Stop();

  ostrevan::grpcdapi::Name name;
  EXPECT_EQ(support::Call(*stubs.dante, &DanteStub::GetName, {}, name).error_code(),
            grpc::StatusCode::UNAVAILABLE);
  ostrevan::networkmanager::Hostname hostname;
  EXPECT_EQ(support::Call(*stubs.network, &NetworkStub::GetHostname, {}, hostname).error_code(),
            grpc::StatusCode::UNAVAILABLE);
  EXPECT_EQ(device.WithDevice([](simulator::Device& it) { return it.network.hostname; }), "kept");
}

TEST_F(InProcess, TwoSimulators_OneChanged_TheOtherKeepsItsOwn) {
  simulator::Simulator other({0, 0, 1, 2});
  const support::Stubs other_stubs(other.NetworkManagerUrl(), other.DapiUrl());
  device.WithDevice([](simulator::Device& it) { it.dante.name = "changed"; });

  EXPECT_EQ(support::Ask(*other_stubs.dante, &DanteStub::GetName).name(), "Amplifier-520001");
  EXPECT_EQ(support::Ask(*other_stubs.dante, &DanteStub::GetTxChannels).channels_size(), 1);
  EXPECT_EQ(support::Ask(*other_stubs.dante, &DanteStub::GetRxChannels).channels_size(), 2);
}

}  // namespace
