// The Dante API daemon of the simulator, through raw stubs.
#include <gmock/gmock.h>

#include "tests/simulator/simulated_device.h"

namespace {

using namespace ostrevan::grpcdapi;
using testing::ElementsAre;

class DanteService : public support::SimulatedDevice {
 protected:
  using Stub = DanteStub;

  LinkInfo LinkOf(int id) { return Ask(&Stub::GetRxChannelLink, Numbered(id)); }
  bool SetLink(const LinkInfo& link) { return Ask(&Stub::SetRxChannelLink, link).success(); }
  bool SetTxName(int id, const std::string& name) {
    return Ask(&Stub::SetTxChannelName, Numbered(id, name)).success();
  }
  bool SetRxName(int id, const std::string& name) {
    return Ask(&Stub::SetRxChannelName, Numbered(id, name)).success();
  }
  bool SetRate(std::uint32_t hertz) {
    SampleRate request;
    request.set_samplerate(hertz);
    return Ask(&Stub::SetSampleRate, request).success();
  }
  bool SetLatency(std::uint32_t microseconds) {
    Latency request;
    request.set_latency(microseconds);
    return Ask(&Stub::SetLatency, request).success();
  }

  static Channel Numbered(int id, const std::string& name = "") {
    Channel channel;
    channel.set_id(id);
    channel.set_name(name);
    return channel;
  }
  static LinkInfo ByNames(int id) {
    LinkInfo link;
    link.set_id(id);
    link.set_devicename("Stage-Box");
    link.set_channelname("Bühne links");
    return link;
  }
  static LinkInfo ByStream(int id) {
    LinkInfo link = ByNames(id);
    link.set_flag5(true);
    rawLinkInfo& raw = *link.mutable_raw();
    raw.set_ip("239.69.1.2");
    raw.set_value2(2);
    raw.set_value3(3);
    raw.set_value4(4);
    raw.set_value5(5);
    raw.set_value6(0xFFFFFFFFU);
    raw.set_encoding(L16);
    raw.set_sip("10.0.0.9");
    raw.set_sessionid(0);
    return link;
  }
};

TEST_F(DanteService, Readers_FactoryDevice_DescribeTheModule) {
  EXPECT_EQ(Ask(&Stub::GetName).name(), "Amplifier-520001");
  EXPECT_EQ(Ask(&Stub::GetManufacturerName).name(), "Ostrevan");
  EXPECT_EQ(Ask(&Stub::GetModelName).name(), "Simulated amplifier");
  EXPECT_EQ(Ask(&Stub::GetModelVersion).version(), "1.0.0");
  EXPECT_EQ(Ask(&Stub::GetSoftwareVersion).version(), "1.4.2");
  EXPECT_EQ(Ask(&Stub::GetFirmwareVersion).version(), "4.2.0.18");
  EXPECT_THAT(Ask(&Stub::GetAvailableSampleRates).samplerates(),
              ElementsAre(44100, 48000, 88200, 96000));
  EXPECT_EQ(Ask(&Stub::GetSampleRate).samplerate(), 48000U);
  EXPECT_EQ(Ask(&Stub::GetLatency).latency(), 1000U);
  EXPECT_EQ(Ask(&Stub::GetMinLatency).latency(), 250U);
  EXPECT_TRUE(Ask(&Stub::GetIsAES67Available).status());
  EXPECT_FALSE(Ask(&Stub::GetAES67Status).status());
  EXPECT_EQ(Ask(&Stub::GetPtpStatus).clockstatus(), CLOCK_STATE_DISCIPLINED);
  EXPECT_EQ(Ask(&Stub::GetPtpConfig).value2(), 128U);
}

TEST_F(DanteService, SetSampleRate_EveryListedRate_IsRead) {
  const AvailableSampleRates available = Ask(&Stub::GetAvailableSampleRates);
  for (const std::uint32_t rate : available.samplerates()) {
    EXPECT_TRUE(SetRate(rate)) << rate;
    EXPECT_EQ(Ask(&Stub::GetSampleRate).samplerate(), rate);
  }
}

TEST_F(DanteService, SetLatency_Minimum_IsRead) {
  EXPECT_TRUE(SetLatency(250));

  EXPECT_EQ(Ask(&Stub::GetLatency).latency(), 250U);
}

TEST_F(DanteService, SetName_AnyName_IsRead) {
  Name request;
  request.set_name("Bühne");

  EXPECT_TRUE(Ask(&Stub::SetName, request).success());

  EXPECT_EQ(Ask(&Stub::GetName).name(), "Bühne");
}

TEST_F(DanteService, SetFlags_OneByOne_ChangeTheirOwnFlagOnly) {
  Status on;
  on.set_status(true);

  EXPECT_TRUE(Ask(&Stub::SetAES67Status, on).success());
  EXPECT_TRUE(Ask(&Stub::GetAES67Status).status());
  EXPECT_FALSE(Ask(&Stub::GetDisableTxStatus).status());

  EXPECT_TRUE(Ask(&Stub::SetDisableTxStatus, on).success());
  EXPECT_TRUE(Ask(&Stub::GetDisableTxStatus).status());
  EXPECT_FALSE(Ask(&Stub::GetPtpSlaveOnlyStatus).status());

  EXPECT_TRUE(Ask(&Stub::SetPtpSlaveOnlyStatus, on).success());
  EXPECT_TRUE(Ask(&Stub::GetPtpSlaveOnlyStatus).status());

  EXPECT_TRUE(Ask(&Stub::SetAES67Status, Status()).success());
  EXPECT_FALSE(Ask(&Stub::GetAES67Status).status());
  EXPECT_TRUE(Ask(&Stub::GetDisableTxStatus).status());
}

TEST_F(DanteService, SetChannelName_KnownChannels_LabelTheirOwnListAndKeepTheDefault) {
  EXPECT_TRUE(SetTxName(4, "Main"));
  EXPECT_TRUE(SetRxName(8, "Sub"));

  const Channels tx = Ask(&Stub::GetTxChannels);
  const Channels rx = Ask(&Stub::GetRxChannels);
  EXPECT_EQ(tx.channels(3).name(), "Main");
  EXPECT_EQ(tx.channels(3).defaultname(), "04");
  EXPECT_EQ(tx.channels(2).name(), "03");
  EXPECT_EQ(rx.channels(7).name(), "Sub");
  EXPECT_EQ(rx.channels(3).name(), "04");
}

TEST_F(DanteService, GetRxChannelLink_FactoryDevice_IsNotSubscribed) {
  LinkInfo bare;
  bare.set_id(8);

  EXPECT_EQ(LinkOf(8).SerializeAsString(), bare.SerializeAsString());
}

TEST_F(DanteService, SetRxChannelLink_ByNames_IsReadForThatChannelOnly) {
  EXPECT_TRUE(SetLink(ByNames(5)));

  EXPECT_EQ(LinkOf(5).SerializeAsString(), ByNames(5).SerializeAsString());
  EXPECT_EQ(LinkOf(4).devicename(), "");
}

TEST_F(DanteService, SetRxChannelLink_ByStream_IsReadWithEveryParameter) {
  EXPECT_TRUE(SetLink(ByStream(1)));

  EXPECT_EQ(LinkOf(1).SerializeAsString(), ByStream(1).SerializeAsString());
}

TEST_F(DanteService, SetRxChannelLink_StreamWithoutSession_IsReadWithoutSession) {
  LinkInfo link = ByStream(1);
  link.mutable_raw()->clear_sessionid();

  EXPECT_TRUE(SetLink(link));

  EXPECT_FALSE(LinkOf(1).raw().has_sessionid());
}

TEST_F(DanteService, SetRxChannelLink_NamesAfterStream_LeaveNoStream) {
  ASSERT_TRUE(SetLink(ByStream(1)));

  EXPECT_TRUE(SetLink(ByNames(1)));

  EXPECT_FALSE(LinkOf(1).has_raw());
}

TEST_F(DanteService, SetRxChannelLink_OnlyTheChannel_RemovesTheSubscription) {
  LinkInfo bare;
  bare.set_id(1);
  for (const LinkInfo& link : {ByNames(1), ByStream(1)}) {
    ASSERT_TRUE(SetLink(link));

    EXPECT_TRUE(SetLink(bare));

    EXPECT_EQ(LinkOf(1).SerializeAsString(), bare.SerializeAsString());
  }
}

TEST_F(DanteService, GetRxChannelLink_UnknownChannel_IsNotFound) {
  LinkInfo reply;

  const auto status = support::Call(*stubs.dante, &Stub::GetRxChannelLink, Numbered(9), reply);

  EXPECT_EQ(status.error_code(), grpc::StatusCode::NOT_FOUND);
}

// --- Rejected requests ---------------------------------------------------------

TEST_F(DanteService, SettingsRejected_ChangeNothing) {
  const std::string before = device.StateJson();

  for (const std::uint32_t rate : {47999U, 0U}) EXPECT_FALSE(SetRate(rate)) << rate;
  EXPECT_FALSE(SetLatency(249));
  EXPECT_FALSE(SetTxName(5, "x"));
  EXPECT_FALSE(SetTxName(0, "x"));
  EXPECT_FALSE(SetTxName(1, ""));
  EXPECT_FALSE(SetRxName(9, "x"));
  EXPECT_FALSE(SetRxName(1, ""));

  EXPECT_EQ(device.StateJson(), before);
}

TEST_F(DanteService, SetRxChannelLink_InvalidLinks_AreRejectedAndChangeNothing) {
  const std::string before = device.StateJson();
  LinkInfo bare;
  bare.set_id(9);
  LinkInfo only_device = ByNames(1);
  only_device.clear_channelname();
  LinkInfo only_channel = ByNames(1);
  only_channel.clear_devicename();
  LinkInfo without_address = ByStream(1);
  without_address.mutable_raw()->clear_ip();
  LinkInfo unknown_encoding = ByStream(1);
  unknown_encoding.mutable_raw()->set_encoding(static_cast<Encoding>(2));

  EXPECT_FALSE(SetLink(ByNames(9)));
  EXPECT_FALSE(SetLink(bare));
  EXPECT_FALSE(SetLink(only_device));
  EXPECT_FALSE(SetLink(only_channel));
  EXPECT_FALSE(SetLink(without_address));
  EXPECT_FALSE(SetLink(unknown_encoding));

  EXPECT_EQ(device.StateJson(), before);
}

TEST_F(DanteService, SetAES67Status_ModuleWithoutAES67_RejectsTurningItOn) {
  device.WithDevice([](simulator::Device& it) { it.dante.aes67_available = false; });
  Status on;
  on.set_status(true);

  EXPECT_FALSE(Ask(&Stub::SetAES67Status, on).success());

  EXPECT_FALSE(Ask(&Stub::GetAES67Status).status());
  EXPECT_TRUE(Ask(&Stub::SetAES67Status).success());
}

}  // namespace
