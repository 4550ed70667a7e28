// Arguments that no application should pass. They are sent unchanged; only the daemon
// validates them.
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
#include "support/captured_stderr.h"
#include "support/device.h"
#include "tests/faults/stderr_lines.h"

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

// --- Strings ----------------------------------------------------------------------

struct StringArgument {
  std::string function;
  std::function<bool(const std::string&)> call;
  std::string path;
  std::function<std::string(const std::string&)> request;
  int strings;  // how often the string is in the request
};
std::ostream& operator<<(std::ostream& out, const StringArgument& argument) {
  return out << argument.function;
}

// The bytes of a request filled with a string.
template <class Message>
auto Filled(void (*fill)(Message&, const std::string&)) {
  return [fill](const std::string& value) {
    Message request;
    fill(request, value);
    return request.SerializeAsString();
  };
}

NetworkgRPC::InterfaceInfo Static(const std::string& value) {
  NetworkgRPC::InterfaceInfo info;
  info.mode = 1;
  info.ip = info.netmask = info.gateway = info.dns = value;
  return info;
}

DantegRPC::ChannelLink Raw(const std::string& value) {
  DantegRPC::ChannelLink link;
  link.isRaw = true;
  link.channelName = link.deviceName = link.ip = link.sip = value;
  return link;
}

void FillConfig(nm::InterfaceConfig& request, const std::string& value) {
  request.set_mode(nm::STATIC);
  request.set_ip(value);
  request.set_netmask(value);
  request.set_gateway(value);
  request.add_dns(value);
}

void FillLink(dapi::LinkInfo& request, const std::string& value) {
  request.set_devicename(value);
  request.set_channelname(value);
  request.mutable_raw()->set_ip(value);
  request.mutable_raw()->set_sip(value);
}

std::vector<StringArgument> StringArguments() {
  using std::string;
  return {
      {"SetHostname", &NetworkgRPC::SetHostname, NetworkManagerPath("SetHostname"),
       Filled<nm::Hostname>([](auto& request, auto& value) { request.set_hostname(value); }), 1},
      {"SetNTPServer", [](const string& value) { return NetworkgRPC::SetNTPServer(value, false); },
       NetworkManagerPath("SetNTPServer"),
       Filled<nm::NTPServer>([](auto& request, auto& value) { request.add_servers(value); }), 1},
      {"SetGenericIP",
       [](const string& value) { return NetworkgRPC::SetGenericIP(0, Static(value), false); },
       NetworkManagerPath("SetNetworkConfig"), Filled(FillConfig), 4},
      {"SetName", &DantegRPC::SetName, DapiPath("SetName"),
       Filled<dapi::Name>([](auto& request, auto& value) { request.set_name(value); }), 1},
      {"SetTxChannelName",
       [](const string& value) {
         return DantegRPC::SetTxChannelName(DantegRPC::Channel{0, value});
       },
       DapiPath("SetTxChannelName"),
       Filled<dapi::Channel>([](auto& request, auto& value) { request.set_name(value); }), 1},
      {"SetTapping", [](const string& value) { return DantegRPC::SetTapping(Raw(value)); },
       DapiPath("SetRxChannelLink"), Filled(FillLink), 4},
  };
}

class EveryString : public testing::TestWithParam<StringArgument> {
 protected:
  EveryString() {
    device.BuildClients();
    device.network_manager->Script(GetParam().path, kConfirmed);
    device.dapi->Script(GetParam().path, kConfirmed);
  }

  // The string arrives byte for byte; the library itself prints nothing.
  void Sends(const std::string& value, int protobuf_lines) {
    faults::StderrLines printed;
    bool done = false;
    {
      CapturedStderr captured;
      done = GetParam().call(value);
      printed = faults::SplitStderr(captured.Take());
    }
    EXPECT_TRUE(done);
    EXPECT_EQ(printed.library, "");
    EXPECT_EQ(printed.protobuf, protobuf_lines);
    const auto requests = device.TakeRequests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].path, GetParam().path);
    EXPECT_TRUE(requests[0].bytes == GetParam().request(value)) << requests[0].bytes.size();
  }

  Device device;
};

TEST_P(EveryString, LongOrStrange_IsSentUnchanged) {
  Sends(std::string(64 * kKilobyte, 'x'), 0);
  Sends(std::string(3 * kMegabyte, 'x'), 0);
  Sends(std::string("with\0a NUL\0", 11), 0);
  Sends("%s%n%d \n\t\x1b[2J", 0);
}

TEST_P(EveryString, InvalidUtf8_IsSentUnchangedAndProtobufPrintsALine) {
  Sends("\xff\xfe", GetParam().strings);
  Sends(std::string(64 * kKilobyte, '\x80'), GetParam().strings);
}

INSTANTIATE_TEST_SUITE_P(Arguments, EveryString, testing::ValuesIn(StringArguments()),
                         [](const auto& test) { return test.param.function; });

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

TEST_P(Numbers, IdsOfAnySize_AreSentUnchanged) {
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

std::string NameOf(const testing::TestParamInfo<int>& number) {
  return std::vector<std::string>{"Smallest", "Largest", "MinusTwo"}.at(number.index);
}
INSTANTIATE_TEST_SUITE_P(Arguments, Numbers, testing::Values(INT_MIN, INT_MAX, -2), NameOf);

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
