// The C functions, from C++ and from a C program.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>

#include "NetworkgRPC_c.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/run_program.h"
#include "support/show.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::CapturedStderr;
using support::Device;
using support::NetworkManagerPath;
using support::Request;

static_assert(sizeof(cInterfaceInfo) == 50 && alignof(cInterfaceInfo) == 1);
static_assert(offsetof(cInterfaceInfo, netmask) == 16 && offsetof(cInterfaceInfo, mac) == 32);

// A control interface with these strings.
void ScriptControl(Device& device, const std::string& ip, const std::string& netmask) {
  nm::InterfacesConfig config;
  config.add_configs()->set_id(support::kLan1);
  nm::InterfacesStatus status;
  auto& live = *status.add_status();
  live.set_id(support::kLan1);
  live.set_ip(ip);
  live.set_netmask(netmask);
  live.set_flag4(true);
  device.network_manager->Script(NetworkManagerPath("GetNetworkConfig"), support::Reply(config));
  device.network_manager->Script(NetworkManagerPath("GetNetworkStatus"), support::Reply(status));
}

void ScriptSetHostname(Device& device) {
  nm::Success yes;
  yes.set_success(true);
  device.network_manager->Script(NetworkManagerPath("SetHostname"), support::Reply(yes));
}

Request SetHostname(const std::string& name) {
  nm::Hostname request;
  request.set_hostname(name);
  return {NetworkManagerPath("SetHostname"), request.SerializeAsString()};
}

// The requests that arrived, except the first of the process, which lists the
// interfaces.
std::vector<Request> LaterRequests(Device& device) {
  auto requests = device.TakeRequests();
  EXPECT_FALSE(requests.empty());
  if (!requests.empty()) requests.erase(requests.begin());
  return requests;
}

TEST(ControlInterface, RoomForFour_FillsOneEntryAndNoByteMore) {
  Device device;
  ScriptControl(device, "10.0.0.5", "255.255.255.0");
  std::array<cInterfaceInfo, 4> entries;
  std::memset(entries.data(), '#', sizeof entries);

  EXPECT_EQ(cGetControlInterface(entries.data(), 4), 1);

  EXPECT_EQ(support::Show(entries[0]), "<10.0.0.5........255.255.255.0...02:00:00:00:00:11.>");
  EXPECT_EQ(support::Show(entries[1]), "<" + std::string(50, '#') + ">");
}

TEST(ControlInterface, NoRoom_FailsAndWritesNothing) {
  Device device;
  ScriptControl(device, "10.0.0.5", "255.255.255.0");
  for (const int max : {0, -1, INT_MIN}) {
    SCOPED_TRACE(max);
    cInterfaceInfo entry;
    std::memset(&entry, '#', sizeof entry);

    EXPECT_EQ(cGetControlInterface(&entry, max), -1);
    EXPECT_EQ(support::Show(entry), "<" + std::string(50, '#') + ">");
  }
  EXPECT_EQ(cGetControlInterface(nullptr, 0), -1);
  // Configuration and status are requested all the same.
  EXPECT_EQ(LaterRequests(device).size(), 4 * 2U);
}

TEST(ControlInterface, DaemonStopped_IsMinusOne) {
  Device device;
  device.StopNetworkManager();
  cInterfaceInfo entry;

  EXPECT_EQ(cGetControlInterface(&entry, 1), -1);
}

TEST(ControlInterface, WithoutAddress_IsAnEntry) {
  Device device;
  ScriptControl(device, "", "");
  cInterfaceInfo entry;

  EXPECT_EQ(cGetControlInterface(&entry, 1), 1);
  EXPECT_EQ(support::Show(entry), "<" + std::string(32, '.') + "02:00:00:00:00:11.>");
}

TEST(ControlInterface, TextsFillTheirFields_AreCopiedWhole) {
  Device device;
  ScriptControl(device, "255.255.255.255", "255.255.255.254");
  cInterfaceInfo entry;

  EXPECT_EQ(cGetControlInterface(&entry, INT_MAX), 1);
  EXPECT_EQ(support::Show(entry), "<255.255.255.255.255.255.255.254.02:00:00:00:00:11.>");
}

TEST(ControlInterface, TextsTooLong_AreCutToTheirFields) {
  Device device;
  ScriptControl(device, std::string(16, 'a'), std::string(100000, 'b'));
  nm::Interfaces interfaces;
  auto& control = *interfaces.add_interfaces();
  control.set_id(support::kLan1);
  control.set_name("lan1");
  control.set_mac(std::string(18, 'c'));
  device.network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"),
                                 support::Reply(interfaces));
  std::array<cInterfaceInfo, 2> entries;
  std::memset(entries.data(), '#', sizeof entries);

  EXPECT_EQ(cGetControlInterface(entries.data(), 2), 1);

  EXPECT_EQ(support::Show(entries[0]), "<" + std::string(15, 'a') + "." + std::string(15, 'b') +
                                           "." + std::string(17, 'c') + ".>");
  EXPECT_EQ(support::Show(entries[1]), "<" + std::string(50, '#') + ">");
}

TEST(ControlInterface, TextWithNul_EndsThere) {
  Device device;
  ScriptControl(device, std::string("10.0\0.0.5", 9), "");
  cInterfaceInfo entry;
  std::memset(&entry, '#', sizeof entry);

  EXPECT_EQ(cGetControlInterface(&entry, 1), 1);
  EXPECT_EQ(support::Show(entry), "<10.0............................02:00:00:00:00:11.>");
}

TEST(ControlInterface, FromC_IsTheSame) {
  Device device;
  ScriptControl(device, "10.0.0.5", "255.255.255.0");

  const auto finished = support::Run({C_PROGRAM, "control", "4"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out,
            "result 1\nip=10.0.0.5 netmask=255.255.255.0 mac=02:00:00:00:00:11\nbytes 50\n");
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(support::Run({C_PROGRAM, "control", "0"}).out, "result -1\nbytes 0\n");
}

TEST(CurrentSwitchMode, FromC_StoresTheModesId) {
  Device device;
  nm::SwitchMode mode;
  mode.set_id(-2);
  device.network_manager->Script(NetworkManagerPath("GetSwitchModeStatus"), support::Reply(mode));

  const auto finished = support::Run({C_PROGRAM, "mode"});

  EXPECT_EQ(finished.out, "result 0\nmode -2\n");
  EXPECT_EQ(finished.err, "");
}

TEST(CurrentSwitchMode, DaemonStopped_LeavesTheIntegerAsItWas) {
  Device device;
  device.StopNetworkManager();

  const auto finished = support::Run({C_PROGRAM, "mode"});

  EXPECT_EQ(finished.out, "result -1\nmode -7\n");
  EXPECT_EQ(finished.err,
            "libNetworkgRPC: ERROR: error while requesting current switch mode in "
            "GetCurrentSwitchMode\n");
}

TEST(SetAmpname, FromC_KeepsLettersAndDigitsAndTellsWhatItDiscards) {
  Device device;
  ScriptSetHostname(device);

  const auto finished = support::Run({C_PROGRAM, "ampname", "Amp-Stage_Left 2", "16"});

  EXPECT_EQ(finished.out, "result 0\n");
  EXPECT_EQ(finished.err,
            "libNetworkgRPC: discard charapter: - 3 3\n"
            "libNetworkgRPC: discard charapter: _ 9 8\n"
            "libNetworkgRPC: discard charapter:   14 12\n"
            "libNetworkgRPC: setting hostname: ampstageleft2 13\n");
  EXPECT_EQ(LaterRequests(device), std::vector<Request>{SetHostname("ampstageleft2")});
}

TEST(SetAmpname, FromC_NullName_SetsTheDefault) {
  Device device;
  ScriptSetHostname(device);

  const auto finished = support::Run({C_PROGRAM, "ampname-null", "3"});

  EXPECT_EQ(finished.out, "result 0\n");
  EXPECT_EQ(finished.err, "libNetworkgRPC: setting hostname to default\n");
  EXPECT_EQ(LaterRequests(device), std::vector<Request>{SetHostname("unknown")});
}

class Ampname : public testing::Test {
 protected:
  Ampname() {
    device.BuildClients();
    ScriptSetHostname(device);
  }

  // What is sent for a name, and what is printed.
  std::string Sent(const std::string& name) {
    EXPECT_EQ(setampname(name.c_str(), name.size()), 0);
    printed = captured.Take();
    const auto requests = device.TakeRequests();
    EXPECT_EQ(requests.size(), 1U);
    nm::Hostname sent;
    EXPECT_TRUE(!requests.empty() && sent.ParseFromString(requests[0].bytes));
    return sent.hostname();
  }

  Device device;
  CapturedStderr captured;
  std::string printed;
};

TEST_F(Ampname, NothingIsLeft_SetsTheDefault) {
  EXPECT_EQ(Sent("---"), "unknown");
  EXPECT_EQ(printed,
            "libNetworkgRPC: discard charapter: - 0 0\n"
            "libNetworkgRPC: discard charapter: - 1 0\n"
            "libNetworkgRPC: discard charapter: - 2 0\n"
            "libNetworkgRPC: setting hostname to default\n");
}

TEST_F(Ampname, LengthZero_SetsTheDefaultWithoutLookingAtTheName) {
  EXPECT_EQ(setampname("amp", 0), 0);
  EXPECT_EQ(setampname(nullptr, 0), 0);
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: setting hostname to default\n"
            "libNetworkgRPC: setting hostname to default\n");
  EXPECT_EQ(device.TakeRequests(),
            (std::vector<Request>{SetHostname("unknown"), SetHostname("unknown")}));
}

TEST_F(Ampname, EmptyName_SetsTheDefault) {
  EXPECT_EQ(setampname("", 5), 0);
  EXPECT_EQ(device.TakeRequests(), std::vector<Request>{SetHostname("unknown")});
}

TEST_F(Ampname, AnyName_PrintsItsLineBeforeTheCall) {
  std::string printed_before;
  device.network_manager->ScriptEach(NetworkManagerPath("SetHostname"), [&](const std::string&) {
    printed_before = captured.Printed();
    return support::Failure(grpc::StatusCode::INTERNAL);
  });
  const std::string failure =
      "libNetworkgRPC: SetHostname: error while requesting informations via gRPC\n";

  for (const char* name : {"", "-", "amp"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(setampname(name, 3), -1);
    EXPECT_NE(printed_before, "");
    EXPECT_EQ(captured.Take(), printed_before + failure);
  }
}

TEST_F(Ampname, LengthBoundsNothingElse) {
  EXPECT_EQ(setampname("amp42", 1), 0);
  EXPECT_EQ(setampname("amp42", 1000), 0);
  EXPECT_EQ(device.TakeRequests(),
            (std::vector<Request>{SetHostname("amp42"), SetHostname("amp42")}));
}

TEST_F(Ampname, EveryByte_OnlyAsciiLettersAndDigitsAreKept) {
  std::string name;
  for (int c = 1; c < 256; ++c) name += static_cast<char>(c);
  // In two halves, each short enough to be read completely.
  EXPECT_EQ(Sent(name.substr(0, 127)),
            "0123456789abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz");
  EXPECT_EQ(Sent(name.substr(127)), "unknown");
  EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 129);
  EXPECT_EQ(printed.substr(0, 43), "libNetworkgRPC: discard charapter: \x80 0 0\nli");
}

TEST_F(Ampname, LongName_SetsItsFirst255Characters) {
  EXPECT_EQ(Sent(std::string(300, 'A')), std::string(255, 'a'));
  EXPECT_EQ(printed, "libNetworkgRPC: setting hostname: " + std::string(255, 'a') + " 255\n");
}

TEST_F(Ampname, NameOf254Characters_IsReadToItsEnd) {
  EXPECT_EQ(Sent(std::string(254, 'b')), std::string(254, 'b'));
}

// Only a NUL ends the kept characters; past the limit there is none to find.
TEST_F(Ampname, LongNameWithDiscardedCharacters_IsFollowedByWhatWasInTheBuffer) {
  EXPECT_EQ(Sent(std::string(253, '-') + "AB"), "abknown");
  EXPECT_EQ(Sent("longername"), "longername");
  EXPECT_EQ(Sent(std::string(253, '-') + "XY"), "xyngername");
  const std::string last = "\nlibNetworkgRPC: setting hostname: xyngername 2\n";
  EXPECT_EQ(printed.substr(printed.size() - last.size()), last);
}

TEST_F(Ampname, DefaultIsSet_BufferStaysAsItWas) {
  EXPECT_EQ(Sent("longername"), "longername");
  EXPECT_EQ(Sent("---"), "unknown");
  EXPECT_EQ(Sent(std::string(254, '-') + "Z"), "zongername");
}

TEST_F(Ampname, DaemonRefuses_Fails) {
  device.network_manager->Script(NetworkManagerPath("SetHostname"), {""});

  EXPECT_EQ(setampname("amp", 3), -1);
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: setting hostname: amp 3\n"
            "libNetworkgRPC: SetHostname: error while requesting informations via gRPC\n");
}

}  // namespace
