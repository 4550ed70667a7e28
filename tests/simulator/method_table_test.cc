// The method table: complete according to the schema, with every request as JSON.
#include "simulator/method_table.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "simulator/factory_defaults.h"
#include "simulator/service.h"

namespace {

namespace dante = ostrevan::grpcdapi;
namespace network = ostrevan::networkmanager;
using simulator::Daemon;
using testing::UnorderedElementsAreArray;

std::vector<std::string> RpcsOfSchema(const std::string& file) {
  std::ifstream stream(NETWORKGRPC_SCHEMAS "/" + file);
  const std::string schema{std::istreambuf_iterator<char>(stream), {}};
  const std::regex rpc("\\brpc +(\\w+)");
  std::vector<std::string> names;
  for (std::sregex_iterator it(schema.begin(), schema.end(), rpc), end; it != end; ++it)
    names.push_back((*it)[1]);
  return names;
}

class EveryRpc : public testing::TestWithParam<std::pair<Daemon, const char*>> {};

TEST_P(EveryRpc, IsInTheTableAndAnswersARequestForIdOne) {
  const auto& [daemon, schema] = GetParam();
  simulator::SharedDevice device(simulator::FactoryDefaults(1, 1));
  std::vector<std::string> names;
  for (const simulator::Method& method : MethodsOf(daemon)) {
    names.push_back(method.name);
    std::string reply;
    // Field 1 is 1: an id, or a flag; of another type, it is skipped.
    EXPECT_TRUE(method.answer(device, "\x08\x01", reply).ok()) << method.name;
    EXPECT_EQ(FindMethod(daemon, method.name), &method);
  }

  EXPECT_THAT(names, UnorderedElementsAreArray(RpcsOfSchema(schema)));
  EXPECT_FALSE(names.empty());
}

INSTANTIATE_TEST_SUITE_P(All, EveryRpc,
                         testing::Values(std::pair(Daemon::kNetworkManager, "networkmanager.proto"),
                                         std::pair(Daemon::kDapi, "grpcdapi.proto")));

// Encoded again, the JSON is the same bytes.
template <class Message>
simulator::Json ToJson(const Message& message) {
  const std::string bytes = message.SerializeAsString();
  simulator::Json json = simulator::ToJson<Message>(bytes);
  EXPECT_EQ(wire_schema::Encode(*wire_schema::FindMessage(message.GetTypeName()), json), bytes);
  return json;
}

TEST(RequestJson, ThatIsNoSuchMessage_IsNamed) {
  const auto fault_of = [](const char* message, const char* json) {
    try {
      wire_schema::Encode(*wire_schema::FindMessage(message), simulator::Json::parse(json));
    } catch (const std::invalid_argument& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  constexpr const char* kIds = "ostrevan.networkmanager.Ids";
  EXPECT_EQ(fault_of(kIds, "[1]"), "Ids must be an object");
  EXPECT_EQ(fault_of(kIds, R"({"id":1})"), "Ids has no field 'id'");
  EXPECT_EQ(fault_of(kIds, R"({"ids":1})"), "field 'ids' must be a list");
  EXPECT_EQ(fault_of(kIds, R"({"ids":[2147483648]})"), "field 'ids' must be of type int32");
  EXPECT_EQ(fault_of("ostrevan.grpcdapi.Name", R"({"name":1})"), "field 'name' must be a string");
  EXPECT_EQ(fault_of("ostrevan.grpcdapi.Status", R"({"status":1})"),
            "field 'status' must be of type bool");
  EXPECT_EQ(fault_of("ostrevan.grpcdapi.Latency", R"({"latency":-1})"),
            "field 'latency' must be of type uint32");
}

template <class Request, class Edit>
std::string Shown(Edit edit) {
  Request request;
  edit(request);
  return ToJson(request).dump();
}

TEST(RequestJson, ShortRequests_HaveTheMembersOfTheSchema) {
  EXPECT_EQ(Shown<ostrevan::common::Empty>([](auto&) {}), "{}");
  EXPECT_EQ(Shown<network::Ids>([](auto&) {}), R"({"ids":[]})");
  EXPECT_EQ(Shown<network::Ids>([](auto& it) {
              it.add_ids(3);
              it.add_ids(-1);
            }),
            R"({"ids":[3,-1]})");
  EXPECT_EQ(Shown<network::Id>([](auto& it) { it.set_id(7); }), R"({"id":7})");
  EXPECT_EQ(Shown<network::Hostname>([](auto& it) { it.set_hostname("B\xc3\xbchne"); }),
            "{\"hostname\":\"B\xc3\xbchne\"}");
  EXPECT_EQ(Shown<network::NTPServer>([](auto& it) {
              it.add_servers("a");
              it.add_servers("b");
            }),
            R"({"servers":["a","b"]})");
  EXPECT_EQ(Shown<dante::Name>([](auto& it) { it.set_name("x"); }), R"({"name":"x"})");
  EXPECT_EQ(Shown<dante::Channel>([](auto& it) {
              it.set_id(1);
              it.set_name("y");
            }),
            R"({"id":1,"name":"y","defaultName":""})");
  EXPECT_EQ(Shown<dante::Latency>([](auto& it) { it.set_latency(4294967295U); }),
            R"({"latency":4294967295})");
  EXPECT_EQ(Shown<dante::SampleRate>([](auto& it) { it.set_samplerate(96000); }),
            R"({"sampleRate":96000})");
  EXPECT_EQ(Shown<dante::Status>([](auto& it) { it.set_status(true); }), R"({"status":true})");
}

TEST(RequestJson, InterfaceConfig_HasEveryField) {
  network::InterfaceConfig config;
  EXPECT_EQ(ToJson(config).dump(),
            R"({"id":0,"mode":0,"ip":"","netmask":"","gateway":"","dns":[],"flag7":false,)"
            R"("flag8":false,"wifi":null})");
  config.set_id(2);
  config.set_mode(network::STATIC);
  config.set_ip("10.0.0.2");
  config.set_netmask("255.0.0.0");
  config.set_gateway("10.0.0.1");
  config.add_dns("10.0.0.3");
  config.set_flag7(true);
  config.mutable_wifi()->set_ssid("stage");
  config.mutable_wifi()->set_value6(5);
  EXPECT_EQ(ToJson(config).dump(),
            R"({"id":2,"mode":1,"ip":"10.0.0.2","netmask":"255.0.0.0","gateway":"10.0.0.1",)"
            R"("dns":["10.0.0.3"],"flag7":true,"flag8":false,"wifi":{"flag1":false,)"
            R"("ssid":"stage","password":"","flag4":false,"AP_region":"","value6":5}})");
}

TEST(RequestJson, Link_HasEveryField) {
  dante::LinkInfo link;
  link.set_id(4);
  link.set_devicename("Desk");
  link.set_channelname("05");
  link.set_flag5(true);
  EXPECT_EQ(ToJson(link).dump(),
            R"({"id":4,"deviceName":"Desk","channelName":"05","raw":null,"flag5":true})");
  dante::rawLinkInfo& raw = *link.mutable_raw();
  raw.set_ip("239.1.2.3");
  raw.set_value2(2);
  raw.set_value3(3);
  raw.set_value4(4);
  raw.set_value5(5);
  raw.set_value6(6);
  raw.set_sip("10.0.0.9");
  EXPECT_EQ(ToJson(link)["raw"].dump(),
            R"({"ip":"239.1.2.3","value2":2,"value3":3,"value4":4,"value5":5,"value6":6,)"
            R"("encoding":0,"sessionId":null,"sip":"10.0.0.9"})");
  raw.set_sessionid(18446744073709551615U);
  EXPECT_EQ(ToJson(link)["raw"]["sessionId"].dump(), "18446744073709551615");
}

}  // namespace
