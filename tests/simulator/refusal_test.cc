// Everything that the simulated daemons refuse: the answer says so, and nothing
// that a client can see changes, not even by the next reload.
#include <functional>
#include <map>
#include <ostream>

#include "tests/simulator/simulated_device.h"

namespace {

using namespace ostrevan::networkmanager;
namespace dapi = ostrevan::grpcdapi;
using support::Ask;
using support::kControl;
using support::Stubs;

struct Change {
  std::string name;
  std::function<bool(const Stubs&)> make;  // gives the answer's success
};

std::ostream& operator<<(std::ostream& out, const Change& change) { return out << change.name; }

// --- Network manager -----------------------------------------------------------

template <class Edit>
Change Config(const std::string& condition, Edit edit) {
  return {"SetNetworkConfig_" + condition, [edit](const Stubs& stubs) {
            InterfaceConfig config;
            config.set_id(kControl);
            config.set_mode(STATIC);
            config.set_ip("10.1.2.3");
            config.set_netmask("255.255.0.0");
            edit(config);
            return Ask(*stubs.network, &NetworkManager::Stub::SetNetworkConfig, config).success();
          }};
}

std::vector<Change> RefusedConfigs() {
  std::vector<Change> changes{
      Config("UnknownInterface", [](InterfaceConfig& it) { it.set_id(99); }),
      Config("NegativeInterface", [](InterfaceConfig& it) { it.set_id(-1); }),
      Config("UnknownMode",
             [](InterfaceConfig& it) { it.set_mode(static_cast<EnInterfaceMode>(4)); }),
      Config("Wireless", [](InterfaceConfig& it) { it.mutable_wifi()->set_ssid("stage"); }),
      Config("BadGateway", [](InterfaceConfig& it) { it.set_gateway("router"); }),
      Config("BadSecondDns",
             [](InterfaceConfig& it) {
               it.add_dns("10.0.0.1");
               it.add_dns("");
             }),
  };
  for (const auto& [condition, ip] :
       std::map<std::string, std::string>{{"AddressMissing", ""},
                                          {"AddressUnspecified", "0.0.0.0"},
                                          {"AddressTooShort", "10.1.2"},
                                          {"AddressNumberTooLarge", "10.1.2.256"},
                                          {"AddressWithPrefix", "10.1.2.3/16"},
                                          {"AddressWithSpace", "10.1.2.3 "},
                                          {"AddressIsIpv6", "::1"},
                                          {"AddressWithNul", std::string("10.1.2.3\0.", 10)}})
    changes.push_back(Config(condition, [ip = ip](InterfaceConfig& it) { it.set_ip(ip); }));
  for (const auto& [condition, mask] :
       std::map<std::string, std::string>{{"NetmaskMissing", ""},
                                          {"NetmaskZero", "0.0.0.0"},
                                          {"NetmaskWithGap", "255.0.255.0"},
                                          {"NetmaskReversed", "0.0.0.255"},
                                          {"NetmaskIsPrefix", "16"}})
    changes.push_back(
        Config(condition, [mask = mask](InterfaceConfig& it) { it.set_netmask(mask); }));
  return changes;
}

Change SwitchModeOf(const std::string& condition, int number) {
  return {"SetSwitchMode_" + condition, [number](const Stubs& stubs) {
            Id id;
            id.set_id(number);
            return Ask(*stubs.network, &NetworkManager::Stub::SetSwitchMode, id).success();
          }};
}

Change TooLongHostname() {
  return {"SetHostname_TooLong", [](const Stubs& stubs) {
            Hostname hostname;
            hostname.set_hostname(std::string(65, 'a'));
            return Ask(*stubs.network, &NetworkManager::Stub::SetHostname, hostname).success();
          }};
}

// --- Dante ---------------------------------------------------------------------

template <class Request>
Change Dante(const std::string& name,
             grpc::Status (dapi::DAPI::Stub::*method)(grpc::ClientContext*, const Request&,
                                                      dapi::Success*),
             const std::function<void(Request&)>& edit) {
  return {name, [method, edit](const Stubs& stubs) {
            Request request;
            edit(request);
            return Ask(*stubs.dante, method, request).success();
          }};
}

Change Rate(const std::string& condition, std::uint32_t rate) {
  return Dante<dapi::SampleRate>("SetSampleRate_" + condition, &dapi::DAPI::Stub::SetSampleRate,
                                 [rate](auto& it) { it.set_samplerate(rate); });
}

Change LatencyOf(const std::string& condition, std::uint32_t latency) {
  return Dante<dapi::Latency>("SetLatency_" + condition, &dapi::DAPI::Stub::SetLatency,
                              [latency](auto& it) { it.set_latency(latency); });
}

Change TxName(const std::string& condition, int id, const std::string& name) {
  return Dante<dapi::Channel>("SetTxChannelName_" + condition, &dapi::DAPI::Stub::SetTxChannelName,
                              [id, name](auto& it) {
                                it.set_id(id);
                                it.set_name(name);
                              });
}

Change RxName(const std::string& condition, int id, const std::string& name) {
  return Dante<dapi::Channel>("SetRxChannelName_" + condition, &dapi::DAPI::Stub::SetRxChannelName,
                              [id, name](auto& it) {
                                it.set_id(id);
                                it.set_name(name);
                              });
}

Change Link(const std::string& condition, const std::function<void(dapi::LinkInfo&)>& edit) {
  return Dante<dapi::LinkInfo>("SetRxChannelLink_" + condition, &dapi::DAPI::Stub::SetRxChannelLink,
                               [edit](auto& it) {
                                 it.set_id(1);
                                 it.set_devicename("Stage-Box");
                                 it.set_channelname("01");
                                 edit(it);
                               });
}

std::vector<Change> RefusedLinks() {
  return {
      Link("UnknownChannel", [](auto& it) { it.set_id(9); }),
      Link("BareUnknownChannel",
           [](auto& it) {
             it.Clear();
             it.set_id(9);
           }),
      Link("OnlyDevice", [](auto& it) { it.clear_channelname(); }),
      Link("OnlyChannel", [](auto& it) { it.clear_devicename(); }),
      Link("StreamWithoutAddress", [](auto& it) { it.mutable_raw()->set_value2(1); }),
      Link("StreamOfUnknownEncoding",
           [](auto& it) {
             it.mutable_raw()->set_ip("239.69.1.2");
             it.mutable_raw()->set_encoding(static_cast<dapi::Encoding>(2));
           }),
  };
}

std::vector<Change> Refused() {
  std::vector<Change> all{
      SwitchModeOf("Unknown", 3),
      SwitchModeOf("Negative", -1),
      TooLongHostname(),
      Rate("NotListed", 47999),
      Rate("Zero", 0),
      LatencyOf("BelowMinimum", 249),
      TxName("UnknownChannel", 5, "x"),
      TxName("ChannelZero", 0, "x"),
      TxName("EmptyName", 1, ""),
      RxName("UnknownChannel", 9, "x"),
      RxName("EmptyName", 1, ""),
  };
  for (const auto& more : {RefusedConfigs(), RefusedLinks()})
    all.insert(all.end(), more.begin(), more.end());
  return all;
}

class Refusal : public support::SimulatedDevice, public testing::WithParamInterface<Change> {};

TEST_P(Refusal, IsAnsweredWithoutSuccessAndChangesNothing) {
  const std::string before = support::Everything(stubs);

  EXPECT_FALSE(GetParam().make(stubs));

  ASSERT_TRUE(Ask(&NetworkStub::ReloadNetworkConfig).success());
  EXPECT_EQ(support::Everything(stubs), before);
}

INSTANTIATE_TEST_SUITE_P(All, Refusal, testing::ValuesIn(Refused()),
                         [](const auto& instance) { return instance.param.name; });

class RefusalTests : public support::SimulatedDevice {};

// Without this, a daemon that refuses every change would pass the tests above.
TEST_F(RefusalTests, RequestsUnedited_AreCarriedOut) {
  const auto unedited = [](auto&) {};

  EXPECT_TRUE(Config("", unedited).make(stubs));
  EXPECT_TRUE(Link("", unedited).make(stubs));
  EXPECT_TRUE(TxName("", 4, "x").make(stubs));
  EXPECT_TRUE(RxName("", 8, "x").make(stubs));
}

TEST_F(RefusalTests, SetAES67Status_ModuleCannot_IsRefusedAndStaysOff) {
  device.WithDevice([](simulator::Device& it) { it.dante.aes67_available = false; });
  dapi::Status on;
  on.set_status(true);

  EXPECT_FALSE(Ask(&DanteStub::SetAES67Status, on).success());

  EXPECT_FALSE(Ask(&DanteStub::GetAES67Status).status());
  EXPECT_TRUE(Ask(&DanteStub::SetAES67Status).success());
}

}  // namespace
