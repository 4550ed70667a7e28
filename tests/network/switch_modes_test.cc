#include <gtest/gtest.h>

#include <climits>

#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/device.h"
#include "support/show.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::Device;
using support::NetworkManagerPath;

TEST(SwitchModes, CalledTwice_AppendsTheListTwice) {
  Device device;
  nm::SwitchModes reply;
  reply.add_modes();
  reply.add_modes()->set_id(1);
  device.network_manager->Script(NetworkManagerPath("GetAvailableSwitchModes"),
                                 support::Reply(reply));
  std::vector<NetworkgRPC::SwitchMode> modes;

  EXPECT_TRUE(NetworkgRPC::GetSwitchModes(modes));
  EXPECT_EQ(support::Show(modes), "[{0 }{1 }]");
  EXPECT_TRUE(NetworkgRPC::GetSwitchModes(modes));
  EXPECT_EQ(support::Show(modes), "[{0 }{1 }{0 }{1 }]");
}

TEST(SwitchModes, EmptyList_SucceedsAndAppendsNothing) {
  Device device;
  device.network_manager->Script(NetworkManagerPath("GetAvailableSwitchModes"), {""});
  std::vector<NetworkgRPC::SwitchMode> modes;

  EXPECT_TRUE(NetworkgRPC::GetSwitchModes(modes));
  EXPECT_TRUE(modes.empty());
}

TEST(SwitchModes, EmptyMode_IsAMode) {
  Device device;
  device.network_manager->Script(NetworkManagerPath("GetSwitchMode"), {""});
  NetworkgRPC::SwitchMode mode{7, "before"};

  EXPECT_TRUE(NetworkgRPC::GetConfiguredSwitchMode(mode));
  EXPECT_EQ(support::Show(mode), "{0 }");
}

TEST(SwitchModes, Set_SendsTheArgumentMinusOneUnchecked) {
  Device device;
  device.BuildClients();
  nm::Success yes;
  yes.set_success(true);
  device.network_manager->Script(NetworkManagerPath("SetSwitchMode"), support::Reply(yes));

  for (const int mode : {1, 0, -5, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(mode);
    EXPECT_TRUE(NetworkgRPC::SetSwitchMode(mode));
    const auto requests = device.TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    nm::Id sent;
    ASSERT_TRUE(sent.ParseFromString(requests[0].bytes));
    EXPECT_EQ(sent.id(), mode == INT_MIN ? INT_MAX : mode - 1);
  }
}

}  // namespace
