// Every request, field by field, as the recorded calls show it.
#include "simulator/request_json.h"

#include <gtest/gtest.h>

namespace {

namespace network = ostrevan::networkmanager;
namespace dante = ostrevan::grpcdapi;
using simulator::ToJson;

TEST(RequestJson, WithoutFields_IsEmpty) {
  EXPECT_EQ(ToJson(ostrevan::common::Empty()).dump(), "{}");
}

TEST(RequestJson, Ids_AreAList) {
  network::Ids ids;
  EXPECT_EQ(ToJson(ids).dump(), R"({"ids":[]})");
  ids.add_ids(3);
  ids.add_ids(-1);
  EXPECT_EQ(ToJson(ids).dump(), R"({"ids":[3,-1]})");
  network::Id id;
  id.set_id(7);
  EXPECT_EQ(ToJson(id).dump(), R"({"id":7})");
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

TEST(RequestJson, SingleFields_HaveTheirNames) {
  network::Hostname hostname;
  hostname.set_hostname("B\xc3\xbchne");
  EXPECT_EQ(ToJson(hostname).dump(), "{\"hostname\":\"B\xc3\xbchne\"}");
  network::NTPServer ntp;
  ntp.add_servers("a");
  ntp.add_servers("b");
  EXPECT_EQ(ToJson(ntp).dump(), R"({"servers":["a","b"]})");
  dante::Name name;
  name.set_name("x");
  EXPECT_EQ(ToJson(name).dump(), R"({"name":"x"})");
  dante::Channel channel;
  channel.set_id(1);
  channel.set_name("y");
  EXPECT_EQ(ToJson(channel).dump(), R"({"id":1,"name":"y","defaultName":""})");
  dante::Latency latency;
  latency.set_latency(4294967295U);
  EXPECT_EQ(ToJson(latency).dump(), R"({"latency":4294967295})");
  dante::SampleRate rate;
  rate.set_samplerate(96000);
  EXPECT_EQ(ToJson(rate).dump(), R"({"sampleRate":96000})");
  dante::Status status;
  status.set_status(true);
  EXPECT_EQ(ToJson(status).dump(), R"({"status":true})");
}

}  // namespace
