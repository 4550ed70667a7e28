// The state document: what is written is read back, and what is wrong is told
// with its line.
#include "simulator/state.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "simulator/document.h"
#include "simulator/factory.h"

namespace {

using simulator::ReadState;
using simulator::State;
using simulator::WriteState;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

State Factory() { return {simulator::FactoryDevice(4, 8), {}}; }

std::string Refusal(const std::string& text) {
  try {
    ReadState(text, "file.json", Factory());
  } catch (const simulator::BadDocument& bad) {
    return bad.what();
  }
  return "";
}

TEST(State, EverythingChanged_IsReadBackAsWritten) {
  State state = Factory();
  state.device.network.hostname = "stage";
  state.device.network.interfaces[0].stored = {simulator::Addressing::kStatic,
                                               {"10.0.0.2", "255.0.0.0", "10.0.0.1", {"10.0.0.3"}},
                                               true,
                                               true};
  state.device.network.live_switch_mode = 2;
  state.device.dante.tx[0].name = "B\xc3\xbchne \"1\"";
  state.device.dante.links[3] = {"Desk", "05", std::nullopt, true};
  state.device.dante.links[4] = {
      "", "",
      simulator::RawStream{"239.1.2.3", {1, 2, 3, 4, 5}, 1, "10.0.0.9", 18446744073709551615U},
      false};
  state.faults = {simulator::ParseFault("GetName:status=ABORTED,delay=5,times=2")};
  const std::string written = WriteState(state);

  const State read = ReadState(written, "file.json", Factory());

  EXPECT_EQ(WriteState(read), written);
  EXPECT_EQ(read.device.dante.links.at(4).raw->session_id, 18446744073709551615U);
  EXPECT_EQ(read.device.network.interfaces[0].stored.addresses.ip, "10.0.0.2");
  ASSERT_THAT(read.faults, SizeIs(1));
  EXPECT_EQ(ToText(read.faults[0]), "GetName:status=ABORTED,delay=5,times=2");
}

TEST(State, OnlySchemaGiven_IsTheDefaults) {
  EXPECT_EQ(WriteState(ReadState("{\"schema\": 1}", "", Factory())), WriteState(Factory()));
}

TEST(State, InstalledExample_IsTheDefaults) {
  std::ifstream file(NETWORKGRPC_EXAMPLE_STATE);
  const std::string text{std::istreambuf_iterator<char>(file), {}};

  EXPECT_EQ(WriteState(ReadState(text, "state.json", Factory())), WriteState(Factory()));
}

TEST(State, WithoutWhatOnlyASimulatorHas_TakesChannelsFromTheRouting) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"interfaces": [{"name": "eth7", "mode": "static",
          "ip": "10.0.0.2", "netmask": "255.0.0.0", "gateway": "", "dns": []}]},
          "dante": {"routing": [{"rx_channel": 7, "device": "A", "channel": "B", "raw": null}]}})",
      "", Factory());

  ASSERT_THAT(read.device.network.interfaces, SizeIs(1));
  EXPECT_EQ(read.device.network.interfaces[0].id, 1);
  EXPECT_EQ(read.device.network.interfaces[0].live.ip, "10.0.0.2");
  ASSERT_THAT(read.device.dante.rx, SizeIs(1));
  EXPECT_EQ(read.device.dante.rx[0].id, 7);
  EXPECT_EQ(read.device.dante.links.at(7).channel_name, "B");
}

struct Bad {
  std::string text;
  std::string where;
  std::string why;
};

class BadState : public testing::TestWithParam<Bad> {};

TEST_P(BadState, IsRefusedWithFileLineAndReason) {
  const std::string refusal = Refusal(GetParam().text);

  EXPECT_THAT(refusal, StartsWith("file.json:" + GetParam().where + ": "));
  EXPECT_THAT(refusal, HasSubstr(GetParam().why));
}

INSTANTIATE_TEST_SUITE_P(
    All, BadState,
    testing::Values(
        Bad{"", "1", "unexpected end"}, Bad{"[]", "1", "is not an object"},
        Bad{"{}", "1", "schema is missing"}, Bad{"{\n\"schema\": 2\n}", "2", "schema is not 1"},
        Bad{"{\n\"schema\": 1,\n// more\n\"bogus\": 1\n}", "4", "bogus is not known"},
        Bad{"{\"schema\": 1,\n\"dante\": {\n\"name\": 5\n}}", "3", "dante.name is not a text"},
        Bad{"{\"schema\": 1,\n\"dante\": {\n\"latency\": -1\n}}", "3",
            "dante.latency is not a whole"},
        Bad{"{\"schema\": 1,\n\"schema\": 1}", "2", "schema stands there twice"},
        Bad{"{\"schema\": 1,\n\"network\": {\"ntp\": [\n\"a\",\n7\n]}}", "4", "network.ntp[1]"},
        Bad{"{\"schema\": 1,\n\"network\": {\"interfaces\": [\n{\"name\":\"a\"},\n{\"mode\":1}]}}",
            "4", "network.interfaces[1].name is missing"},
        Bad{"{\"schema\": 1,\n\"dante\": {\"rx_channels\": [],\n\"routing\": [\n{\"rx_channel\": "
            "1}]}}",
            "4", "dante.routing[0] is for a receive channel that there is not"},
        Bad{"{\"schema\": 1,\n\"faults\": [\n{\"method\": \"GetBogus\", \"fault\": \"drop\"}]}",
            "3", "GetBogus"},
        Bad{"{\"schema\": 1\n,,}", "2", "syntax error"}));

}  // namespace
