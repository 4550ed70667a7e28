// The state of a simulated device as a document: what is written is read back, and
// what a document lacks follows from the rest.
#include "simulator/state.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "simulator/factory_defaults.h"

namespace {

using simulator::ReadState;
using simulator::State;
using simulator::WriteState;
using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;

State Factory() { return {simulator::FactoryDefaults(4, 8), {}}; }

std::string ErrorOf(const std::string& text) {
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
  EXPECT_EQ(ToString(read.faults[0]), "GetName:status=ABORTED,delay=5,times=2");
}

TEST(State, OnlySchemaGiven_IsTheDefaults) {
  EXPECT_EQ(WriteState(ReadState("{\"schema\": 1}", "", Factory())), WriteState(Factory()));
}

TEST(State, InstalledExample_IsTheDefaults) {
  std::ifstream file(NETWORKGRPC_EXAMPLE_STATE);
  const std::string text{std::istreambuf_iterator<char>(file), {}};

  EXPECT_EQ(WriteState(ReadState(text, "state.json", Factory())), WriteState(Factory()));
}

TEST(State, NoReceiveChannelsGiven_AreThoseOfTheRouting) {
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

TEST(State, NumberHasNoName_IsKept) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"switch_mode": 7,
          "interfaces": [{"name": "lan0", "mode": 4, "speed": 9}]},
          "dante": {"routing": [{"rx_channel": 1, "raw": {"ip": "239.1.2.3", "encoding": 5}}],
                    "ptp": {"clock": -1}}})",
      "", Factory());

  EXPECT_EQ(read.device.network.stored_switch_mode, 7);
  EXPECT_EQ(read.device.network.live_switch_mode, 7);
  EXPECT_EQ(static_cast<int>(read.device.network.interfaces[0].stored.mode), 4);
  EXPECT_EQ(static_cast<int>(read.device.network.interfaces[0].speed), 9);
  EXPECT_EQ(read.device.network.interfaces[0].live.ip, "169.254.82.1");  // as dynamic
  EXPECT_EQ(read.device.dante.links.at(1).raw->encoding, 5);
  EXPECT_EQ(static_cast<int>(read.device.dante.ptp.clock), -1);
  EXPECT_EQ(WriteState(ReadState(WriteState(read), "", Factory())), WriteState(read));
}

TEST(State, InterfaceOfTheFactory_HasItsDefaultsAndOthersTheNextIds) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"interfaces": [
          {"name": "eth7"}, {"name": "lan1", "mode": "link-local-only"}, {"name": "eth8"}]}})",
      "", Factory());

  const auto& interfaces = read.device.network.interfaces;
  ASSERT_THAT(interfaces, SizeIs(3));
  EXPECT_EQ(interfaces[0].id, 3);
  EXPECT_EQ(interfaces[0].mac, "02:54:41:52:ff:03");
  EXPECT_EQ(interfaces[1].id, 2);
  EXPECT_EQ(interfaces[1].mac, "02:54:41:52:00:02");
  EXPECT_EQ(interfaces[1].live.ip, "169.254.82.2");
  EXPECT_EQ(interfaces[2].id, 4);
}

TEST(State, IdIsThatOfAFactoryInterface_TheLatterHasTheNextOne) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"interfaces": [
          {"name": "lan0"}, {"name": "eth7", "id": 1, "mac": "02:00:00:00:00:00"}, {"name": "lan1"},
          {"name": "eth8", "id": 2147483647}]}})",
      "", Factory());

  const auto& interfaces = read.device.network.interfaces;
  ASSERT_THAT(interfaces, SizeIs(4));
  EXPECT_EQ(interfaces[0].id, 3);
  EXPECT_EQ(interfaces[1].id, 1);
  EXPECT_EQ(interfaces[1].mac, "02:00:00:00:00:00");
  EXPECT_EQ(interfaces[2].id, 2);
}

TEST(State, MacIsEmpty_StaysEmpty) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"interfaces": [
          {"name": "lan0", "mac": ""}, {"name": "eth7", "mac": ""}, {"name": "eth8"}]}})",
      "", Factory());

  const auto& interfaces = read.device.network.interfaces;
  ASSERT_THAT(interfaces, SizeIs(3));
  EXPECT_EQ(interfaces[0].mac, "");
  EXPECT_EQ(interfaces[1].mac, "");
  EXPECT_EQ(interfaces[2].mac, "02:54:41:52:ff:03");
}

TEST(State, IdsAtTheEndsOfTheirRange_AreKeptAndOthersGetFreeOnes) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"interfaces": [
          {"name": "eth5", "id": 2147483647}, {"name": "eth6"}, {"name": "eth7", "id": -1},
          {"name": "eth8", "id": -2147483648}, {"name": "eth9", "id": 0}, {"name": "lan0"}]}})",
      "", Factory());

  std::vector<std::int32_t> ids;
  for (const auto& interface : read.device.network.interfaces) ids.push_back(interface.id);
  EXPECT_THAT(ids, ElementsAre(2147483647, 2, -1, -2147483647 - 1, 0, 1));
}

TEST(State, SettingsInEffectGiven_MayDifferFromStoredOnes) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"ntp": ["a"], "ntp_in_effect": ["b"], "switch_mode": 1,
          "switch_mode_in_effect": 2, "interfaces": [{"name": "lan0", "live": {"ip": "10.0.0.9"}}]}})",
      "", Factory());

  EXPECT_EQ(read.device.network.stored_ntp.at(0), "a");
  EXPECT_EQ(read.device.network.live_ntp.at(0), "b");
  EXPECT_EQ(read.device.network.stored_switch_mode, 1);
  EXPECT_EQ(read.device.network.live_switch_mode, 2);
  EXPECT_EQ(read.device.network.interfaces[0].live.ip, "10.0.0.9");
}

TEST(State, IsRead_FactoryResetKeepsInterfacesAndRestoresSettings) {
  const State read = ReadState(
      R"({"schema": 1, "network": {"hostname": "hall", "ntp": ["a"], "interfaces": [
          {"name": "eth7", "mode": "static", "ip": "10.0.0.2", "netmask": "255.0.0.0"}]}})",
      "", Factory());

  const simulator::Network& factory = read.device.factory_network;
  EXPECT_EQ(factory.hostname, "amplifier");
  EXPECT_EQ(factory.stored_ntp.at(0), "pool.ntp.example");
  ASSERT_THAT(factory.interfaces, SizeIs(1));
  EXPECT_EQ(factory.interfaces[0].name, "eth7");
  EXPECT_EQ(factory.interfaces[0].stored.mode, simulator::Addressing::kDynamic);
}

TEST(State, RoutingGiven_ReplacesThatOfTheDefaults) {
  State defaults = Factory();
  defaults.device.dante.links[2] = {"Desk", "05", std::nullopt, false};
  const std::string routing = R"({"rx_channel": 1, "device": "A", "channel": "B"})";

  const State given = ReadState(R"({"schema": 1, "dante": {"routing": [)" + routing +
                                    R"(], "rx_channels": [{"id": 1}, {"id": 2}]}})",
                                "", defaults);
  const State not_given = ReadState(R"({"schema": 1})", "", defaults);

  EXPECT_EQ(given.device.dante.links.count(1), 1U);
  EXPECT_EQ(given.device.dante.links.count(2), 0U);
  EXPECT_EQ(not_given.device.dante.links.count(2), 1U);
}

TEST(State, MessageOfAFault_IsReadAndWritten) {
  State state = Factory();
  state.faults = {simulator::ParseFault("GetName:status=ABORTED,message=a, b")};

  const State read = ReadState(WriteState(state), "", Factory());

  ASSERT_THAT(read.faults, SizeIs(1));
  EXPECT_EQ(read.faults[0].message, "a, b");
}

class StateFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "state_test.XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
  }
  void TearDown() override {
    std::remove(Path("state.json").c_str());
    rmdir(folder.c_str());
  }

  std::string Path(const std::string& name) const { return folder + '/' + name; }

  // Why the file cannot be used, "" when it can.
  template <class Use>
  static std::string ErrorOf(Use use) {
    try {
      use();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  std::string folder;
};

TEST_F(StateFile, Saved_ReplacesTheFileAndIsLoadedAgain) {
  SaveState(Path("state.json"), Factory());
  State changed = Factory();
  changed.device.dante.name = "changed";
  SaveState(Path("state.json"), changed);

  const State loaded = LoadState(Path("state.json"), Factory());

  EXPECT_EQ(WriteState(loaded), WriteState(changed));
}

TEST_F(StateFile, Absent_IsRejectedWithItsNameAndReason) {
  EXPECT_EQ(ErrorOf([&] { LoadState(Path("none"), Factory()); }),
            "cannot read " + Path("none") + ": No such file or directory");
  EXPECT_EQ(ErrorOf([&] { LoadState(folder, Factory()); }),
            "cannot read " + folder + ": Is a directory");
}

TEST_F(StateFile, ThatCannotBeWritten_IsRejectedWithItsNameAndReason) {
  const std::string file = Path("none/state.json");
  EXPECT_EQ(ErrorOf([&] { SaveState(file, Factory()); }),
            "cannot write " + file + ": cannot use folder " + Path("none/") +
                ": No such file or directory");
}

// The form of a document is tested in tests/state_document.
TEST(State, InvalidFault_IsRejectedWithFileLineAndReason) {
  EXPECT_EQ(
      ErrorOf("{\"schema\": 1,\n\"faults\": [\n{\"method\": \"GetName\", \"fault\": "
              "\"drop\", \"message\": \"x\"}]}"),
      "file.json:3: faults[0]: a status code or message is for the fault status, not for drop");
  EXPECT_THAT(ErrorOf("{\"schema\": 1,\n\"faults\": [{\"method\": \"GetName\", \"fault\": "
                      "\"drop\"},\n{\"method\": \"GetBogus\", \"fault\": \"drop\"}]}"),
              StartsWith("file.json:3: faults[1]: unknown method 'GetBogus'"));
}

}  // namespace
