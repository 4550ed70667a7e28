#include <gtest/gtest.h>

#include <limits>

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
using Links = std::vector<DantegRPC::ChannelLink>;

const std::string kLinkLine =
    "libNetworkgRPC: ERROR: error while requesting rx channel link in GetTapping\n";

class Routing : public testing::Test {
 protected:
  Routing() { device.BuildClients(); }

  void ScriptChannels(const std::vector<int>& ids) {
    dapi::Channels channels;
    for (const int id : ids) channels.add_channels()->set_id(id);
    device.dapi->Script(DapiPath("GetRxChannels"), support::Reply(channels));
  }

  // What GetTapping returns for this link of the only channel, 7.
  std::string Read(const dapi::LinkInfo& link) {
    ScriptChannels({7});
    device.dapi->Script(DapiPath("GetRxChannelLink"), support::Reply(link));
    Links links;
    EXPECT_TRUE(DantegRPC::GetTapping(links));
    return support::Show(links);
  }

  // The request that SetTapping sends for this record.
  dapi::LinkInfo Sent(const DantegRPC::ChannelLink& record) {
    dapi::Success yes;
    yes.set_success(true);
    device.dapi->Script(DapiPath("SetRxChannelLink"), support::Reply(yes));
    device.TakeRequests();
    EXPECT_TRUE(DantegRPC::SetTapping(record));
    const auto requests = device.TakeRequests();
    EXPECT_EQ(requests.size(), 1U);
    dapi::LinkInfo sent;
    EXPECT_TRUE(!requests.empty() && sent.ParseFromString(requests[0].bytes));
    return sent;
  }

  Device device;
  CapturedStderr captured;
};

DantegRPC::ChannelLink Raw() {
  DantegRPC::ChannelLink record;
  record.rxChannelId = 7;
  record.isRaw = true;
  record.ip = "239.0.0.1";
  return record;
}

// A request that contains only the channel number.
std::string Bare(int id) {
  dapi::LinkInfo link;
  link.set_id(id);
  return link.SerializeAsString();
}

TEST_F(Routing, NoReceiveChannels_SucceedsAndAppendsNothing) {
  ScriptChannels({});
  Links links(1);

  EXPECT_TRUE(DantegRPC::GetTapping(links));
  EXPECT_EQ(links.size(), 1U);
  EXPECT_EQ(device.TakeRequests().size(), 1U);
}

TEST_F(Routing, SecondOfThreeLinksFails_KeepsOneRecordAndAsksNoFurther) {
  ScriptChannels({1, 2, 3});
  device.dapi->ScriptNext(DapiPath("GetRxChannelLink"), {""});
  device.dapi->ScriptNext(DapiPath("GetRxChannelLink"),
                          support::Failure(grpc::StatusCode::NOT_FOUND));
  device.dapi->Script(DapiPath("GetRxChannelLink"), {""});
  Links links;

  EXPECT_FALSE(DantegRPC::GetTapping(links));
  ASSERT_EQ(links.size(), 1U);
  EXPECT_EQ(links[0].rxChannelId, 1);
  EXPECT_EQ(captured.Take(), kLinkLine);
  EXPECT_EQ(device.TakeRequests().size(), 3U);
}

// Parts that this library does not know are sent, too.
TEST_F(Routing, ChannelOfTheList_IsSentAsReceived) {
  const std::string channel(
      "\x08\x07\x12\x01n\x1a\x01"
      "d\x78\x05",
      10);
  device.dapi->Script(DapiPath("GetRxChannels"), {"\x0a\x0a" + channel});
  device.dapi->Script(DapiPath("GetRxChannelLink"), {""});
  Links links;

  EXPECT_TRUE(DantegRPC::GetTapping(links));
  EXPECT_EQ(device.TakeRequests(), (std::vector<Request>{{DapiPath("GetRxChannels"), ""},
                                                         {DapiPath("GetRxChannelLink"), channel}}));
}

TEST_F(Routing, Unsubscribed_IsARecordOfEmptyNamesAndZeros) {
  EXPECT_EQ(Read(dapi::LinkInfo()),
            "[{rx=7 channel= device= isRaw=0 ip= values=0,0,0,0,0 encoding=0 sip= session=0,0}]");
}

TEST_F(Routing, RawWithoutIp_IsNotRawWhateverFlag5SaysButItsOtherFieldsAreRead) {
  dapi::LinkInfo link;
  link.set_id(99);
  link.set_channelname("c");
  link.set_devicename("d");
  link.set_flag5(true);
  auto& raw = *link.mutable_raw();
  raw.set_value2(2);
  raw.set_value3(3);
  raw.set_value4(4);
  raw.set_value5(5);
  raw.set_value6(std::numeric_limits<std::uint32_t>::max());
  raw.set_encoding(static_cast<dapi::Encoding>(-3));
  raw.set_sip("s");

  EXPECT_EQ(Read(link),
            "[{rx=7 channel=c device=d isRaw=0 ip= values=2,3,4,5,4294967295 encoding=-3 sip=s "
            "session=0,0}]");
}

TEST_F(Routing, SessionIdZero_IsToldFromNone) {
  dapi::LinkInfo link;
  link.mutable_raw()->set_ip("i");
  link.mutable_raw()->set_sessionid(0);
  EXPECT_EQ(Read(link),
            "[{rx=7 channel= device= isRaw=1 ip=i values=0,0,0,0,0 encoding=0 sip= session=1,0}]");

  link.mutable_raw()->set_sessionid(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(Read(link),
            "[{rx=7 channel= device= isRaw=1 ip=i values=0,0,0,0,0 encoding=0 sip= "
            "session=1,18446744073709551615}]");
}

TEST_F(Routing, ReadTwice_AppendsTwice) {
  ScriptChannels({1, 2});
  device.dapi->Script(DapiPath("GetRxChannelLink"), {""});
  Links links;

  EXPECT_TRUE(DantegRPC::GetTapping(links));
  EXPECT_TRUE(DantegRPC::GetTapping(links));
  EXPECT_EQ(links.size(), 4U);
}

TEST_F(Routing, SetNamed_SendsTheNamesAndNothingElse) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = 7;
  record.channelName = "01";
  record.deviceName = "stage";
  record.ip = "ignored";
  record.value2 = 2;
  record.hasSessionId = true;
  dapi::LinkInfo expected;
  expected.set_id(7);
  expected.set_channelname("01");
  expected.set_devicename("stage");

  EXPECT_EQ(Sent(record).SerializeAsString(), expected.SerializeAsString());
}

TEST_F(Routing, SetHalfNamed_SendsTheChannelNumberOnly) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = 7;
  EXPECT_EQ(Sent(record).SerializeAsString(), Bare(7));
  record.channelName = "01";
  EXPECT_EQ(Sent(record).SerializeAsString(), Bare(7));
  record.channelName = "";
  record.deviceName = "stage";
  EXPECT_EQ(Sent(record).SerializeAsString(), Bare(7));
}

TEST_F(Routing, SetRawWithoutIp_SendsTheChannelNumberOnly) {
  DantegRPC::ChannelLink record = Raw();
  record.ip = "";
  record.sip = "s";
  record.channelName = "01";
  record.deviceName = "stage";

  EXPECT_EQ(Sent(record).SerializeAsString(), Bare(7));
}

TEST_F(Routing, SetRaw_SendsEveryParameterAndTheNames) {
  DantegRPC::ChannelLink record = Raw();
  record.channelName = "01";
  record.value2 = 2;
  record.value3 = 3;
  record.value4 = 4;
  record.value5 = 5;
  record.value6 = 6;
  record.encoding = 1;
  record.sip = "s";
  record.hasSessionId = true;
  dapi::LinkInfo expected;
  expected.set_id(7);
  expected.set_channelname("01");
  auto& raw = *expected.mutable_raw();
  raw.set_ip("239.0.0.1");
  raw.set_value2(2);
  raw.set_value3(3);
  raw.set_value4(4);
  raw.set_value5(5);
  raw.set_value6(6);
  raw.set_encoding(dapi::L16);
  raw.set_sip("s");
  raw.set_sessionid(0);

  EXPECT_EQ(Sent(record).SerializeAsString(), expected.SerializeAsString());
}

TEST_F(Routing, SetRaw_LargestNumbersAndANegativeChannel_AreSentWhole) {
  DantegRPC::ChannelLink record = Raw();
  record.rxChannelId = -7;
  record.value2 = record.value3 = record.value4 = record.value5 = record.value6 =
      std::numeric_limits<std::uint32_t>::max();
  record.hasSessionId = true;
  record.sessionId = std::numeric_limits<std::uint64_t>::max();

  const dapi::LinkInfo sent = Sent(record);

  EXPECT_EQ(sent.id(), -7);
  for (const std::uint32_t value : {sent.raw().value2(), sent.raw().value3(), sent.raw().value4(),
                                    sent.raw().value5(), sent.raw().value6()})
    EXPECT_EQ(value, record.value2);
  EXPECT_EQ(sent.raw().sessionid(), record.sessionId);
}

TEST_F(Routing, SetRaw_EveryEncodingButL16IsSentAsL24) {
  for (const int encoding : {0, 1, 2, 5, -1}) {
    DantegRPC::ChannelLink record = Raw();
    record.encoding = encoding;
    EXPECT_EQ(Sent(record).raw().encoding(), encoding == 1 ? dapi::L16 : dapi::L24);
  }
}

TEST_F(Routing, SetRaw_SessionIdWithoutItsFlagIsNotSent) {
  DantegRPC::ChannelLink record = Raw();
  record.sessionId = 88;

  EXPECT_EQ(Sent(record).raw().has_sessionId_case(), dapi::rawLinkInfo::HAS_SESSIONID_NOT_SET);
}

}  // namespace
