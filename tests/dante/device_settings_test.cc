#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <string>

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

class DeviceSettings : public testing::Test {
 protected:
  DeviceSettings() { device.BuildClients(); }

  void Script(const std::string& method, const google::protobuf::MessageLite& reply) {
    device.dapi->Script(DapiPath(method), support::Reply(reply));
  }
  void Confirm(const std::string& method) {
    dapi::Success yes;
    yes.set_success(true);
    Script(method, yes);
  }

  Device device;
  CapturedStderr captured;
};

TEST_F(DeviceSettings, SetName_SendsEveryTextUnchanged) {
  Confirm("SetName");
  for (const std::string& text : {std::string(), std::string("B\xc3\xbchne"),
                                  std::string("a\0b", 3), std::string(65536, 'x')}) {
    dapi::Name request;
    request.set_name(text);
    EXPECT_TRUE(DantegRPC::SetName(text));
    EXPECT_EQ(device.TakeRequests(),
              (std::vector<Request>{{DapiPath("SetName"), request.SerializeAsString()}}));
  }
}

TEST_F(DeviceSettings, EmptyTextsAndZeroNumbers_AreAnswers) {
  for (const char* method : {"GetName", "GetModelVersion", "GetSampleRate", "GetAES67Status"})
    device.dapi->Script(DapiPath(method), {""});
  std::string text = "before";
  int rate = -1;
  bool enabled = true;

  EXPECT_TRUE(DantegRPC::GetName(text));
  EXPECT_EQ(text, "");
  EXPECT_TRUE(DantegRPC::GetSampleRate(rate));
  EXPECT_EQ(rate, 0);
  EXPECT_TRUE(DantegRPC::GetAES67Status(enabled));
  EXPECT_FALSE(enabled);
}

TEST_F(DeviceSettings, NegativeArguments_ArriveAsTheir32Bits) {
  Confirm("SetSampleRate");
  Confirm("SetLatency");
  for (const int number : {-1, INT_MIN, INT_MAX}) {
    dapi::SampleRate rate;
    rate.set_samplerate(static_cast<std::uint32_t>(number));
    dapi::Latency latency;
    latency.set_latency(static_cast<std::uint32_t>(number));

    EXPECT_TRUE(DantegRPC::SetSampleRate(number));
    EXPECT_TRUE(DantegRPC::SetLatency(number));
    EXPECT_EQ(device.TakeRequests(),
              (std::vector<Request>{{DapiPath("SetSampleRate"), rate.SerializeAsString()},
                                    {DapiPath("SetLatency"), latency.SerializeAsString()}}));
  }
}

TEST_F(DeviceSettings, LargeNumbers_ComeBackAsTheir32Bits) {
  dapi::SampleRate sent_rate;
  sent_rate.set_samplerate(0xFFFFFFFFU);
  Script("GetSampleRate", sent_rate);
  dapi::Latency sent_latency;
  sent_latency.set_latency(0x80000000U);
  Script("GetLatency", sent_latency);
  dapi::AvailableSampleRates sent_rates;
  sent_rates.add_samplerates(0xFFFFFFFEU);
  Script("GetAvailableSampleRates", sent_rates);
  int rate = 0;
  int latency = 0;
  std::vector<int> rates;

  EXPECT_TRUE(DantegRPC::GetSampleRate(rate));
  EXPECT_EQ(rate, -1);
  EXPECT_TRUE(DantegRPC::GetLatency(latency));
  EXPECT_EQ(latency, INT_MIN);
  EXPECT_TRUE(DantegRPC::GetAvailableSampleRates(rates));
  EXPECT_EQ(support::Show(rates), "[(-2)]");
}

TEST_F(DeviceSettings, AvailableSampleRatesTwice_HoldsBothLists) {
  dapi::AvailableSampleRates sent;
  sent.add_samplerates(96000);
  sent.add_samplerates(0);
  Script("GetAvailableSampleRates", sent);
  std::vector<int> rates;

  EXPECT_TRUE(DantegRPC::GetAvailableSampleRates(rates));
  EXPECT_TRUE(DantegRPC::GetAvailableSampleRates(rates));
  EXPECT_EQ(support::Show(rates), "[(96000)(0)(96000)(0)]");
}

TEST_F(DeviceSettings, FlagsAreReadAsTheyAre) {
  const std::map<std::string, bool (*)(bool&)> readers = {
      {"GetIsAES67Available", &DantegRPC::GetAES67Available},
      {"GetAES67Status", &DantegRPC::GetAES67Status},
      {"GetDisableTxStatus", &DantegRPC::GetDisableTx},
      {"GetPtpSlaveOnlyStatus", &DantegRPC::GetPtpSlaveOnly}};
  for (const auto& [method, read] : readers) {
    for (const bool sent : {true, false}) {
      dapi::Status status;
      status.set_status(sent);
      Script(method, status);
      bool flag = !sent;
      EXPECT_TRUE(read(flag)) << method;
      EXPECT_EQ(flag, sent) << method;
    }
  }
}

TEST_F(DeviceSettings, FlagsAreSentAsTheyAre) {
  Confirm("SetAES67Status");
  Confirm("SetDisableTxStatus");
  Confirm("SetPtpSlaveOnlyStatus");

  EXPECT_TRUE(DantegRPC::SetAES67(false));
  EXPECT_TRUE(DantegRPC::SetDisableTx(false));
  EXPECT_TRUE(DantegRPC::SetPtpSlaveOnly(false));

  EXPECT_EQ(device.TakeRequests(), (std::vector<Request>{{DapiPath("SetAES67Status"), ""},
                                                         {DapiPath("SetDisableTxStatus"), ""},
                                                         {DapiPath("SetPtpSlaveOnlyStatus"), ""}}));
}

TEST_F(DeviceSettings, FlagReadersOnFailure_ResetOnlyTheirOwnTwoFlags) {
  device.StopDapi();
  bool disabled = true;
  bool slave_only = true;
  bool available = true;
  bool enabled = true;

  EXPECT_FALSE(DantegRPC::GetDisableTx(disabled));
  EXPECT_FALSE(DantegRPC::GetPtpSlaveOnly(slave_only));
  EXPECT_FALSE(DantegRPC::GetAES67Available(available));
  EXPECT_FALSE(DantegRPC::GetAES67Status(enabled));

  EXPECT_FALSE(disabled);
  EXPECT_FALSE(slave_only);
  EXPECT_TRUE(available);
  EXPECT_TRUE(enabled);
}

TEST_F(DeviceSettings, Reboot_AsksTheNetworkManagerOnly) {
  device.StopNetworkManager();

  EXPECT_FALSE(DantegRPC::Reboot());
  EXPECT_TRUE(device.dapi->TakeRequests().empty());
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: error while rebooting dante in Reboot\n");
}

}  // namespace
