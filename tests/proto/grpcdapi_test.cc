// The bytes of the messages of the Dante API daemon.
#include <gtest/gtest.h>

#include <limits>

#include "ostrevan/grpcdapi.pb.h"
#include "support/captured_stderr.h"
#include "support/hex.h"

namespace {

using namespace ostrevan::grpcdapi;  // every message of the package
using support::ParseHex;
using support::ToHex;

TEST(DapiWire, Channel) {
  ostrevan::grpcdapi::Channel channel;
  channel.set_id(3);
  EXPECT_EQ(ToHex(channel), "08 03");
  channel.set_name("a");
  channel.set_defaultname("b");
  EXPECT_EQ(ToHex(channel), "08 03 12 01 61 1A 01 62");
}

TEST(DapiWire, SampleRates) {
  SampleRate rate;
  rate.set_samplerate(48000);
  EXPECT_EQ(ToHex(rate), "08 80 F7 02");
  AvailableSampleRates rates;
  rates.add_samplerates(44100);
  rates.add_samplerates(48000);
  EXPECT_EQ(ToHex(rates), "0A 06 C4 D8 02 80 F7 02");
}

TEST(DapiWire, SampleRates_UnpackedParsesLikePacked) {
  AvailableSampleRates rates;
  ASSERT_TRUE(ParseHex("08 C4 D8 02 08 80 F7 02", rates));
  EXPECT_EQ(ToHex(rates), "0A 06 C4 D8 02 80 F7 02");
}

TEST(DapiWire, RawLinkInfo_ZeroIsEmpty) {
  rawLinkInfo raw;
  raw.set_encoding(L24);
  EXPECT_EQ(ToHex(raw), "");
}

TEST(DapiWire, RawLinkInfo_SessionIdZeroIsPresent) {
  rawLinkInfo raw;
  raw.set_encoding(L16);
  raw.set_sessionid(0);
  EXPECT_EQ(ToHex(raw), "38 01 40 00");
}

TEST(DapiWire, RawLinkInfo_SessionIdPresenceIsRead) {
  rawLinkInfo raw;
  ASSERT_TRUE(ParseHex("40 00", raw));
  EXPECT_EQ(raw.has_sessionId_case(), rawLinkInfo::kSessionId);
  EXPECT_EQ(raw.sessionid(), 0U);
  ASSERT_TRUE(ParseHex("", raw));
  EXPECT_EQ(raw.has_sessionId_case(), rawLinkInfo::HAS_SESSIONID_NOT_SET);
}

TEST(DapiWire, RawLinkInfo_LargestSessionId) {
  rawLinkInfo raw;
  raw.set_sessionid(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(ToHex(raw), "40 FF FF FF FF FF FF FF FF FF 01");
}

TEST(DapiWire, RawLinkInfo_EveryFieldInNumberOrder) {
  rawLinkInfo raw;
  raw.set_ip("a");
  raw.set_value2(2);
  raw.set_value3(3);
  raw.set_value4(4);
  raw.set_value5(5);
  raw.set_value6(6);
  raw.set_encoding(L16);
  raw.set_sessionid(8);
  raw.set_sip("b");
  EXPECT_EQ(ToHex(raw), "0A 01 61 10 02 18 03 20 04 28 05 30 06 38 01 40 08 4A 01 62");
}

TEST(DapiWire, RawLinkInfo_UnlistedEncodingIsKept) {
  rawLinkInfo raw;
  ASSERT_TRUE(ParseHex("38 02", raw));
  EXPECT_EQ(static_cast<int>(raw.encoding()), 2);
}

TEST(DapiWire, LinkInfo_RawPresence) {
  LinkInfo link;
  link.set_id(1);
  EXPECT_EQ(ToHex(link), "08 01");
  link.mutable_raw();
  EXPECT_EQ(ToHex(link), "08 01 22 00");
  ASSERT_TRUE(ParseHex("08 01", link));
  EXPECT_FALSE(link.has_raw());
  ASSERT_TRUE(ParseHex("22 00", link));
  EXPECT_TRUE(link.has_raw());
}

TEST(DapiWire, LinkInfo_EveryField) {
  LinkInfo link;
  link.set_id(1);
  link.set_devicename("a");
  link.set_channelname("b");
  link.mutable_raw();
  link.set_flag5(true);
  EXPECT_EQ(ToHex(link), "08 01 12 01 61 1A 01 62 22 00 28 01");
}

TEST(DapiWire, SmallMessages) {
  ostrevan::grpcdapi::Status status;
  EXPECT_EQ(ToHex(status), "");
  status.set_status(true);
  EXPECT_EQ(ToHex(status), "08 01");
  ostrevan::grpcdapi::Success success;
  success.set_success(true);
  EXPECT_EQ(ToHex(success), "08 01");
  Latency latency;
  latency.set_latency(300);
  EXPECT_EQ(ToHex(latency), "08 AC 02");
  ostrevan::grpcdapi::Version version;
  version.set_version("a");
  EXPECT_EQ(ToHex(version), "0A 01 61");
  Name name;
  name.set_name("a");
  EXPECT_EQ(ToHex(name), "0A 01 61");
  Channels channels;
  channels.add_channels()->set_id(1);
  EXPECT_EQ(ToHex(channels), "0A 02 08 01");
}

TEST(DapiWire, Ptp) {
  PtpConfig config;
  config.set_value1(1);
  config.set_value2(2);
  EXPECT_EQ(ToHex(config), "08 01 10 02");
  PtpStatus status;
  status.set_value1(-1);
  status.set_clockstatus(CLOCK_STATE_DISCIPLINED);
  EXPECT_EQ(ToHex(status), "08 FF FF FF FF FF FF FF FF FF 01 10 03");
}

TEST(DapiWire, InvalidUtf8_IsReportedUnderTheFieldsNameAndSent) {
  support::CapturedStderr captured;
  ostrevan::grpcdapi::Channel channel;
  channel.set_name("\xFF");
  EXPECT_EQ(ToHex(channel), "12 01 FF");
  EXPECT_NE(captured.Take().find("ostrevan.grpcdapi.Channel.name"), std::string::npos);
}

TEST(DapiWire, EnumNumbers) {
  EXPECT_EQ(CLOCK_STATE_NONE, 0);
  EXPECT_EQ(CLOCK_STATE_PASSIVE, 1);
  EXPECT_EQ(CLOCK_STATE_UNDISCIPLINED, 2);
  EXPECT_EQ(CLOCK_STATE_DISCIPLINED, 3);
  EXPECT_EQ(L24, 0);
  EXPECT_EQ(L16, 1);
}

TEST(DapiWire, TypeNames) {
  EXPECT_EQ(rawLinkInfo().GetTypeName(), "ostrevan.grpcdapi.rawLinkInfo");
}

}  // namespace
