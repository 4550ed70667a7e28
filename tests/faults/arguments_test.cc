// Arguments that no application should pass. They are sent as they are: the
// daemon judges them.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "tests/faults/lines.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/device.h"

namespace {

namespace nm = ostrevan::networkmanager;
namespace dapi = ostrevan::grpcdapi;
using support::CapturedStderr;
using support::DapiPath;
using support::Device;
using support::NetworkManagerPath;
using support::Request;

constexpr std::size_t kKilobyte = 1024;
constexpr std::size_t kMegabyte = 1024 * kKilobyte;

const support::Answer kConfirmed = {std::string("\x08\x01", 2)};

// --- Texts ------------------------------------------------------------------------

struct TextTaker {
  std::string name;
  std::function<bool(const std::string&)> call;
  std::string path;
  std::function<std::string(const std::string&)> request;
  int texts;  // how often the text is in the request
};
std::ostream& operator<<(std::ostream& out, const TextTaker& taker) { return out << taker.name; }

NetworkgRPC::InterfaceInfo Static(const std::string& text) {
  NetworkgRPC::InterfaceInfo info;
  info.mode = 1;
  info.ip = info.netmask = info.gateway = info.dns = text;
  return info;
}

DantegRPC::ChannelLink Raw(const std::string& text) {
  DantegRPC::ChannelLink link;
  link.isRaw = true;
  link.channelName = link.deviceName = link.ip = link.sip = text;
  return link;
}

std::vector<TextTaker> NetworkTakers() {
  return {
      {"SetHostname", &NetworkgRPC::SetHostname, NetworkManagerPath("SetHostname"),
       [](const std::string& text) {
         nm::Hostname request;
         request.set_hostname(text);
         return request.SerializeAsString();
       },
       1},
      {"SetNTPServer",
       [](const std::string& text) { return NetworkgRPC::SetNTPServer(text, false); },
       NetworkManagerPath("SetNTPServer"),
       [](const std::string& text) {
         nm::NTPServer request;
         request.add_servers(text);
         return request.SerializeAsString();
       },
       1},
      {"SetGenericIP",
       [](const std::string& text) { return NetworkgRPC::SetGenericIP(0, Static(text), false); },
       NetworkManagerPath("SetNetworkConfig"),
       [](const std::string& text) {
         nm::InterfaceConfig request;
         request.set_mode(nm::STATIC);
         request.set_ip(text);
         request.set_netmask(text);
         request.set_gateway(text);
         request.add_dns(text);
         return request.SerializeAsString();
       },
       4},
  };
}

std::vector<TextTaker> DanteTakers() {
  return {
      {"SetName", &DantegRPC::SetName, DapiPath("SetName"),
       [](const std::string& text) {
         dapi::Name request;
         request.set_name(text);
         return request.SerializeAsString();
       },
       1},
      {"SetTxChannelName",
       [](const std::string& text) {
         return DantegRPC::SetTxChannelName({0, text});
       },
       DapiPath("SetTxChannelName"),
       [](const std::string& text) {
         dapi::Channel request;
         request.set_name(text);
         return request.SerializeAsString();
       },
       1},
      {"SetTapping", [](const std::string& text) { return DantegRPC::SetTapping(Raw(text)); },
       DapiPath("SetRxChannelLink"),
       [](const std::string& text) {
         dapi::LinkInfo request;
         request.set_devicename(text);
         request.set_channelname(text);
         request.mutable_raw()->set_ip(text);
         request.mutable_raw()->set_sip(text);
         return request.SerializeAsString();
       },
       4},
  };
}

std::vector<TextTaker> TextTakers() {
  std::vector<TextTaker> all = NetworkTakers();
  for (TextTaker& taker : DanteTakers()) all.push_back(std::move(taker));
  return all;
}

class EveryText : public testing::TestWithParam<TextTaker> {
 protected:
  EveryText() {
    device.BuildClients();
    device.network_manager->Script(GetParam().path, kConfirmed);
    device.dapi->Script(GetParam().path, kConfirmed);
  }

  // The text arrives byte for byte; the library itself prints nothing.
  void Sends(const std::string& text, int protobuf_lines) {
    faults::Lines printed;
    bool done = false;
    {
      CapturedStderr captured;
      done = GetParam().call(text);
      printed = faults::Separate(captured.Take());
    }
    EXPECT_TRUE(done);
    EXPECT_EQ(printed.own, "");
    EXPECT_EQ(printed.protobuf, protobuf_lines);
    const auto requests = device.TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].path, GetParam().path);
    EXPECT_TRUE(requests[0].bytes == GetParam().request(text)) << requests[0].bytes.size();
  }

  Device device;
};

TEST_P(EveryText, LongOrStrange_IsSentAsItIs) {
  Sends(std::string(64 * kKilobyte, 'x'), 0);
  Sends(std::string(3 * kMegabyte, 'x'), 0);
  Sends(std::string("with\0a NUL\0", 11), 0);
  Sends("%s%n%d \n\t\x1b[2J", 0);
}

TEST_P(EveryText, InvalidUtf8_IsSentAllTheSameAndTheRuntimeTells) {
  Sends("\xff\xfe", GetParam().texts);
  Sends(std::string(64 * kKilobyte, '\x80'), GetParam().texts);
}

INSTANTIATE_TEST_SUITE_P(Arguments, EveryText, testing::ValuesIn(TextTakers()),
                         [](const auto& test) { return test.param.name; });

TEST(MacAddress, NameIsStrange_IsNotFound) {
  Device device;
  device.BuildClients();
  const CapturedStderr captured;
  for (const std::string& name :
       {std::string(), std::string(3 * kMegabyte, 'x'), std::string("lan0\0", 5),
        std::string("\xff"), std::string("%s")}) {
    std::string mac = "before";
    EXPECT_FALSE(NetworkgRPC::GetMACAddress(name, mac));
    EXPECT_EQ(mac, "before");
  }
}

// --- Numbers ------------------------------------------------------------------------

class Numbers : public testing::TestWithParam<int> {
 protected:
  Numbers() { device.BuildClients(); }

  // The one request that this call makes.
  template <class Message>
  Message Sent(const std::string& path, const std::function<bool()>& call) {
    device.network_manager->Script(path, kConfirmed);
    device.dapi->Script(path, kConfirmed);
    EXPECT_TRUE(call());
    const auto requests = device.TakeRequests();
    EXPECT_EQ(requests.size(), 1U);
    Message message;
    EXPECT_TRUE(!requests.empty() && message.ParseFromString(requests[0].bytes));
    return message;
  }

  Device device;
};

TEST_P(Numbers, IdsOfAnySize_AreSentAsTheyAre) {
  const int n = GetParam();
  EXPECT_EQ(Sent<nm::InterfaceConfig>(NetworkManagerPath("SetNetworkConfig"),
                                      [&] { return NetworkgRPC::SetGenericIP(n, {}, false); })
                .id(),
            n);
  EXPECT_EQ(Sent<dapi::Channel>(DapiPath("SetTxChannelName"),
                                [&] {
                                  return DantegRPC::SetTxChannelName({n, "x"});
                                })
                .id(),
            n);
  DantegRPC::ChannelLink link = Raw("x");
  link.rxChannelId = n;
  EXPECT_EQ(Sent<dapi::LinkInfo>(DapiPath("SetRxChannelLink"),
                                 [&] { return DantegRPC::SetTapping(link); })
                .id(),
            n);
}

TEST_P(Numbers, OtherModesAndEncodings_AreDynamicAndL24) {
  NetworkgRPC::InterfaceInfo info = Static("x");
  info.mode = GetParam();
  EXPECT_EQ(Sent<nm::InterfaceConfig>(NetworkManagerPath("SetNetworkConfig"),
                                      [&] { return NetworkgRPC::SetGenericIP(1, info, false); })
                .mode(),
            nm::DYNAMIC);
  DantegRPC::ChannelLink link = Raw("x");
  link.encoding = GetParam();
  EXPECT_EQ(Sent<dapi::LinkInfo>(DapiPath("SetRxChannelLink"),
                                 [&] { return DantegRPC::SetTapping(link); })
                .raw()
                .encoding(),
            dapi::L24);
}

TEST_P(Numbers, SecondaryOfAnySizeButZero_IsTheSecondaryInterface) {
  EXPECT_EQ(
      Sent<nm::InterfaceConfig>(NetworkManagerPath("SetNetworkConfig"),
                                [&] { return NetworkgRPC::SetDanteIP({}, GetParam(), false); })
          .id(),
      support::kLan2);
}

TEST_P(Numbers, SettingsOfAnySize_KeepTheir32Bits) {
  const auto bits = static_cast<std::uint32_t>(GetParam());
  EXPECT_EQ(Sent<dapi::SampleRate>(DapiPath("SetSampleRate"),
                                   [&] { return DantegRPC::SetSampleRate(GetParam()); })
                .samplerate(),
            bits);
  EXPECT_EQ(
      Sent<dapi::Latency>(DapiPath("SetLatency"), [&] { return DantegRPC::SetLatency(GetParam()); })
          .latency(),
      bits);
  EXPECT_EQ(Sent<nm::Id>(NetworkManagerPath("SetSwitchMode"),
                         [&] { return NetworkgRPC::SetSwitchMode(GetParam()); })
                .id(),
            static_cast<std::int32_t>(bits - 1U));
}

TEST_P(Numbers, InterfaceIdThatNobodyHas_HasNoLabel) {
  CapturedStderr captured;
  std::string label = "before";
  EXPECT_FALSE(NetworkgRPC::GetTarvoInterfaceName(GetParam(), label));
  EXPECT_EQ(label, "before");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: wrong interface ID while getting tarvo name: " +
                                 std::to_string(GetParam()) + "\n");
}

INSTANTIATE_TEST_SUITE_P(Arguments, Numbers, testing::Values(INT_MIN, INT_MAX, -2));

TEST(LargestNumbers, ReachTheDaemonAndComeBackWhole) {
  Device device;
  device.BuildClients();
  dapi::LinkInfo reply;
  auto& raw = *reply.mutable_raw();
  raw.set_ip("x");
  raw.set_value2(UINT32_MAX);
  raw.set_value6(UINT32_MAX);
  raw.set_sessionid(UINT64_MAX);
  dapi::Channels channels;
  channels.add_channels()->set_id(INT_MIN);
  device.dapi->Script(DapiPath("GetRxChannels"), support::Reply(channels));
  device.dapi->Script(DapiPath("GetRxChannelLink"), support::Reply(reply));
  device.dapi->Script(DapiPath("SetRxChannelLink"), kConfirmed);
  std::vector<DantegRPC::ChannelLink> links;

  ASSERT_TRUE(DantegRPC::GetTapping(links));
  ASSERT_EQ(links.size(), 1U);
  EXPECT_EQ(links[0].rxChannelId, INT_MIN);
  EXPECT_EQ(links[0].value6, UINT32_MAX);
  EXPECT_EQ(links[0].sessionId, UINT64_MAX);

  device.TakeRequests();
  ASSERT_TRUE(DantegRPC::SetTapping(links[0]));
  reply.set_id(INT_MIN);
  EXPECT_EQ(device.TakeRequests(),
            (std::vector<Request>{{DapiPath("SetRxChannelLink"), reply.SerializeAsString()}}));
}

}  // namespace
