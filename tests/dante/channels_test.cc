#include <gtest/gtest.h>

#include "DantegRPC.h"
#include "ostrevan/grpcdapi.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/show.h"

namespace {

namespace dapi = ostrevan::grpcdapi;
using support::CapturedStderr;
using support::DapiPath;
using support::Device;
using support::Request;

class Channels : public testing::Test {
 protected:
  Channels() {
    device.BuildClients();
    dapi::Channels two;
    for (const int id : {2, 1}) {
      auto& channel = *two.add_channels();
      channel.set_id(id);
      channel.set_name("label");
      channel.set_defaultname("default");
    }
    device.dapi->Script(DapiPath("GetTxChannels"), support::Reply(two));
    device.dapi->Script(DapiPath("GetRxChannels"), support::Reply(two));
  }

  Device device;
  CapturedStderr captured;
};

TEST_F(Channels, ListedTwice_AreAppendedTwiceInTheDaemonsOrder) {
  std::vector<DantegRPC::Channel> channels;

  EXPECT_TRUE(DantegRPC::GetTxChannels(channels));
  EXPECT_TRUE(DantegRPC::GetTxChannels(channels));
  EXPECT_EQ(support::Show(channels), "[{2 label}{1 label}{2 label}{1 label}]");
}

TEST_F(Channels, ChannelWithoutALabel_IsListedWithAnEmptyName) {
  dapi::Channels one;
  one.add_channels()->set_defaultname("default");
  device.dapi->Script(DapiPath("GetTxChannels"), support::Reply(one));
  std::vector<DantegRPC::Channel> channels;

  EXPECT_TRUE(DantegRPC::GetTxChannels(channels));
  EXPECT_EQ(support::Show(channels), "[{0 }]");
}

TEST_F(Channels, NoChannels_SucceedsAndAppendsNothing) {
  device.dapi->Script(DapiPath("GetRxChannels"), {""});
  std::vector<DantegRPC::Channel> channels = {{9, "before"}};

  EXPECT_TRUE(DantegRPC::GetRxChannels(channels));
  EXPECT_EQ(support::Show(channels), "[{9 before}]");
}

TEST_F(Channels, CountOfNone_IsZero) {
  device.dapi->Script(DapiPath("GetTxChannels"), {""});
  int tx = -1;
  int rx = -1;

  EXPECT_TRUE(DantegRPC::GetChannelsNum(tx, rx));
  EXPECT_EQ(tx, 0);
  EXPECT_EQ(rx, 2);
}

TEST_F(Channels, BothCountsFail_PrintsBothLinesAndKeepsBothOutputs) {
  device.StopDapi();
  int tx = -1;
  int rx = -2;

  EXPECT_FALSE(DantegRPC::GetChannelsNum(tx, rx));
  EXPECT_EQ(tx, -1);
  EXPECT_EQ(rx, -2);
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while requesting tx channels in GetChannelsNum\n"
            "libNetworkgRPC: ERROR: error while requesting rx channels in GetChannelsNum\n");
}

TEST_F(Channels, RenameToNothing_FailsWithoutACall) {
  EXPECT_FALSE(DantegRPC::SetTxChannelName({1, ""}));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: set label with invalid label SetTxChannelName\n");
  EXPECT_TRUE(device.TakeRequests().empty());
}

TEST_F(Channels, Rename_SendsNumberAndNameWhateverTheyAre) {
  dapi::Success yes;
  yes.set_success(true);
  device.dapi->Script(DapiPath("SetTxChannelName"), support::Reply(yes));
  for (const DantegRPC::Channel& channel : {DantegRPC::Channel{0, "x"}, DantegRPC::Channel{2, " "},
                                            DantegRPC::Channel{-1, std::string(65536, 'x')},
                                            DantegRPC::Channel{1, std::string("\0", 1)}}) {
    dapi::Channel request;
    request.set_id(channel.id);
    request.set_name(channel.name);

    EXPECT_TRUE(DantegRPC::SetTxChannelName(channel));
    EXPECT_EQ(device.TakeRequests(),
              (std::vector<Request>{{DapiPath("SetTxChannelName"), request.SerializeAsString()}}));
  }
}

}  // namespace
