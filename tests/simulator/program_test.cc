// The simulator as a program: options, ready line, signals, exit status.
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "simulator/simulator.h"
#include "tests/simulator/simulator_process.h"
#include "tests/simulator/stubs.h"
#include "tests/support/child.h"

namespace {

using support::Ask;
using support::SimulatorProcess;
using support::Stubs;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;
using DanteStub = ostrevan::grpcdapi::DAPI::Stub;
using NetworkStub = ostrevan::networkmanager::NetworkManager::Stub;

support::Finished RunSimulator(std::vector<std::string> options) {
  options.insert(options.begin(), support::SimulatorProgram());
  return support::Run(options);
}

std::string Port(const std::string& url) { return url.substr(url.rfind(':') + 1); }

bool HasIpv6Loopback() {
  sockaddr_in6 loopback{};
  loopback.sin6_family = AF_INET6;
  loopback.sin6_addr = in6addr_loopback;
  const int file = socket(AF_INET6, SOCK_STREAM, 0);
  const bool bound =
      file >= 0 && bind(file, reinterpret_cast<sockaddr*>(&loopback), sizeof loopback) == 0;
  close(file);
  return bound;
}

TEST(Program, Started_PrintsOneReadyLineWithWorkingEndpoints) {
  const SimulatorProcess simulator;

  EXPECT_THAT(simulator.ReadyLine(),
              MatchesRegex("ready network_manager_url=127\\.0\\.0\\.1:[0-9]+ "
                           "grpc_dapi_url=127\\.0\\.0\\.1:[0-9]+\n"));
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
  EXPECT_EQ(Ask(*stubs.network, &NetworkStub::GetHostname).hostname(), "amplifier");
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetSampleRate).samplerate(), 48000U);
}

TEST(Program, AskedByTheNameLocalhost_Answers) {
  const SimulatorProcess simulator;

  const Stubs stubs("localhost:" + Port(simulator.NetworkManagerUrl()),
                    "localhost:" + Port(simulator.DapiUrl()));

  EXPECT_EQ(Ask(*stubs.network, &NetworkStub::GetHostname).hostname(), "amplifier");
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetSampleRate).samplerate(), 48000U);
}

TEST(Program, AskedAtTheIpv6Loopback_Answers) {
  const SimulatorProcess simulator;
  // Where there is none, the simulator must not need it.
  const std::string host = HasIpv6Loopback() ? "[::1]:" : "127.0.0.1:";

  const Stubs stubs(host + Port(simulator.NetworkManagerUrl()), host + Port(simulator.DapiUrl()));

  EXPECT_EQ(Ask(*stubs.network, &NetworkStub::GetHostname).hostname(), "amplifier");
  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetSampleRate).samplerate(), 48000U);
}

TEST(Program, ChannelCountsGiven_HasThatManyChannelsWithDefaultNames) {
  const SimulatorProcess simulator({"--tx-channels", "0", "--rx-channels", "12"});

  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());

  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetTxChannels).channels_size(), 0);
  const auto rx = Ask(*stubs.dante, &DanteStub::GetRxChannels);
  ASSERT_EQ(rx.channels_size(), 12);
  EXPECT_EQ(rx.channels(0).name(), "01");
  EXPECT_EQ(rx.channels(11).name(), "12");
  EXPECT_EQ(rx.channels(11).defaultname(), "12");
}

TEST(Program, PortsGiven_ServesOnThem) {
  // given two ports that were free a moment ago
  std::string network_manager_port;
  std::string dapi_port;
  {
    const simulator::Simulator other;
    network_manager_port = Port(other.NetworkManagerUrl());
    dapi_port = Port(other.DapiUrl());
  }

  const SimulatorProcess simulator(
      {"--network-manager-port", network_manager_port, "--dapi-port", dapi_port});

  EXPECT_EQ(simulator.ReadyLine(), "ready network_manager_url=127.0.0.1:" + network_manager_port +
                                       " grpc_dapi_url=127.0.0.1:" + dapi_port + "\n");
}

TEST(Program, TerminatedOrInterrupted_EndsWithStatusZero) {
  for (const int signal : {SIGTERM, SIGINT}) {
    SimulatorProcess simulator;
    const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
    Ask(*stubs.dante, &DanteStub::GetName);  // a connection is open

    EXPECT_EQ(simulator.End(signal), 0) << "signal " << signal;
  }
}

TEST(Program, PortInUse_SaysWhichAndEndsWithStatusOne) {
  const simulator::Simulator other;
  const std::string port = Port(other.DapiUrl());

  const support::Finished finished = RunSimulator({"--network-manager-port", port});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: cannot listen on 127.0.0.1:" + port +
                              ": Address already in use; choose another port, or 0 for a free "
                              "one\n");
}

TEST(Program, Help_NamesEveryOptionAndEndsWithStatusZero) {
  const support::Finished finished = RunSimulator({"--help"});

  EXPECT_EQ(finished.status, 0);
  for (const char* option :
       {"--network-manager-port", "--dapi-port", "--tx-channels", "--rx-channels", "--help",
        "--version", "--state", "--save", "--fault", "--devices", "--control", "--device"})
    EXPECT_THAT(finished.out, HasSubstr(option));
}

TEST(Program, Version_IsTheProjects) {
  const support::Finished finished = RunSimulator({"--version"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out, "networkgrpc-simulator " NETWORKGRPC_VERSION "\n");
}

// --- States, faults, several devices, ctl --------------------------------------

// A folder that only this user can enter, for sockets and states.
class ProgramInFolder : public testing::Test {
 protected:
  ProgramInFolder() {
    std::string pattern = testing::TempDir() + "program_test.XXXXXX";
    if (mkdtemp(pattern.data()) != nullptr) folder = pattern;
  }
  ~ProgramInFolder() override {
    for (const char* file : {"first.json", "second.json"}) std::remove(Path(file).c_str());
    rmdir(folder.c_str());
  }
  ProgramInFolder(const ProgramInFolder&) = delete;
  ProgramInFolder& operator=(const ProgramInFolder&) = delete;

  std::string Path(const std::string& name) const { return folder + '/' + name; }

  // What ctl prints.
  std::string Ctl(std::vector<std::string> words) {
    words.insert(words.begin(), {"ctl", "--control", Path("control")});
    const support::Finished finished = RunSimulator(std::move(words));
    EXPECT_EQ(finished.status, 0) << finished.err;
    return finished.out;
  }

  std::string folder;
};

bool SetName(const Stubs& stubs, const std::string& to) {
  ostrevan::grpcdapi::Name name;
  name.set_name(to);
  return Ask(*stubs.dante, &DanteStub::SetName, name).success();
}

void ChangeMuch(const Stubs& stubs) {
  EXPECT_TRUE(SetName(stubs, "Hall"));
  ostrevan::grpcdapi::LinkInfo link;
  link.set_id(2);
  link.set_devicename("Desk");
  link.set_channelname("05");
  EXPECT_TRUE(Ask(*stubs.dante, &DanteStub::SetRxChannelLink, link).success());
  ostrevan::networkmanager::InterfaceConfig config;
  config.set_id(1);
  config.set_mode(ostrevan::networkmanager::STATIC);
  config.set_ip("10.0.0.2");
  config.set_netmask("255.0.0.0");
  EXPECT_TRUE(Ask(*stubs.network, &NetworkStub::SetNetworkConfig, config).success());
  ostrevan::networkmanager::Id mode;
  mode.set_id(2);
  EXPECT_TRUE(Ask(*stubs.network, &NetworkStub::SetSwitchMode, mode).success());  // not in effect
}

TEST_F(ProgramInFolder, StateSaved_TheNextRunAnswersIdentically) {
  std::string before;
  {
    SimulatorProcess first({"--save", Path("first.json")});
    const Stubs stubs(first.NetworkManagerUrl(), first.DapiUrl());
    ChangeMuch(stubs);
    before = Everything(stubs);
    EXPECT_EQ(first.End(SIGTERM), 0);
  }

  const SimulatorProcess second({"--state", Path("first.json")});

  const Stubs stubs(second.NetworkManagerUrl(), second.DapiUrl());
  EXPECT_EQ(Everything(stubs), before);
  EXPECT_THAT(before, HasSubstr("Hall"));
}

TEST_F(ProgramInFolder, OneFault_ActsAlikeFromFileOptionAndCtl) {
  std::ofstream(Path("first.json")) << R"({"schema": 1, "faults": [ // one
             {"method": "SetName", "fault": "refuse", "times": 1}]})";
  const SimulatorProcess by_file({"--state", Path("first.json")});
  const SimulatorProcess by_option({"--fault", "SetName:refuse,times=1"});
  const SimulatorProcess by_ctl({"--control", Path("control")});
  EXPECT_EQ(Ctl({"fault", "SetName:refuse,times=1"}), "");

  for (const SimulatorProcess* simulator : {&by_file, &by_option, &by_ctl}) {
    const Stubs stubs(simulator->NetworkManagerUrl(), simulator->DapiUrl());
    EXPECT_FALSE(SetName(stubs, "refused"));
    EXPECT_TRUE(SetName(stubs, "done"));
    EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetName).name(), "done");
  }
}

TEST_F(ProgramInFolder, CtlCalls_TellsMethodRequestAndFaultUntilForgotten) {
  const SimulatorProcess simulator(
      {"--control", Path("control"), "--fault", "SetName:refuse,times=1"});
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
  SetName(stubs, "Hall");
  Ask(*stubs.network, &NetworkStub::GetHostname);

  EXPECT_EQ(Ctl({"calls"}),
            "{\"number\":1,\"method\":\"DAPI.SetName\",\"request\":{\"name\":\"Hall\"},"
            "\"fault\":\"SetName:refuse,times=1\"}\n"
            "{\"number\":2,\"method\":\"NetworkManager.GetHostname\",\"request\":{},"
            "\"fault\":null}\n");
  EXPECT_EQ(Ctl({"forget"}), "");
  EXPECT_EQ(Ctl({"calls"}), "");
}

TEST_F(ProgramInFolder, CtlState_IsTheModelAtThatMoment) {
  const SimulatorProcess simulator({"--control", Path("control")});
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
  SetName(stubs, "Hall");

  const auto state = nlohmann::json::parse(Ctl({"state"}));

  EXPECT_EQ(state["dante"]["name"], "Hall");
  EXPECT_EQ(state["network"]["interfaces"].size(), 4U);
}

TEST_F(ProgramInFolder, ThreeDevices_EachHasItsPortsStateAndFaults) {
  SimulatorProcess simulator({"--devices", "3", "--control", Path("control")});
  std::vector<Stubs> devices;
  std::set<std::string> urls;
  for (int number = 1; number <= 3; ++number) {
    if (number > 1) simulator.NextDevice();
    devices.emplace_back(simulator.NetworkManagerUrl(), simulator.DapiUrl());
    urls.insert({simulator.NetworkManagerUrl(), simulator.DapiUrl()});
  }
  EXPECT_EQ(urls.size(), 6U);
  EXPECT_EQ(Ctl({"--device", "2", "fault", "SetName:refuse"}), "");

  EXPECT_TRUE(SetName(devices[0], "one"));
  EXPECT_FALSE(SetName(devices[1], "two"));
  EXPECT_TRUE(SetName(devices[2], "three"));

  std::vector<std::string> names;
  for (const Stubs& stubs : devices) names.push_back(Ask(*stubs.dante, &DanteStub::GetName).name());
  EXPECT_THAT(names, ElementsAre("one", "Amplifier-520002", "three"));
  EXPECT_EQ(Ctl({"faults", "--device", "2"}), "SetName:refuse\n");
  EXPECT_EQ(Ctl({"faults", "--device", "1"}), "");
}

TEST_F(ProgramInFolder, TwoDevicesOneStateEach_AreSavedEach) {
  std::ofstream(Path("first.json")) << R"({"schema": 1, "dante": {"name": "one"}})";
  std::ofstream(Path("second.json")) << R"({"schema": 1, "dante": {"name": "two"}})";
  SimulatorProcess simulator({"--devices", "2", "--state", Path("first.json"), "--state",
                              Path("second.json"), "--save", Path("second.json"), "--save",
                              Path("first.json")});
  simulator.NextDevice();
  EXPECT_EQ(simulator.End(SIGINT), 0);

  std::vector<std::string> names;
  for (const char* file : {"first.json", "second.json"}) {
    std::ifstream stream(Path(file));
    names.push_back(nlohmann::json::parse(stream)["dante"]["name"]);
  }
  EXPECT_THAT(names, ElementsAre("two", "one"));
}

TEST_F(ProgramInFolder, SaveImpossible_IsToldBeforeAnythingStarts) {
  const support::Finished finished = RunSimulator({"--save", Path("none/state.json")});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: cannot write " + Path("none/state.json") +
                              ": No such file or directory\n");
}

struct BadWish {
  std::string name;
  std::vector<std::string> words;
  std::string told;
};

std::ostream& operator<<(std::ostream& out, const BadWish& bad) { return out << bad.name; }

class BadWishes : public testing::TestWithParam<BadWish> {};

TEST_P(BadWishes, AreToldByTheSimulator) {
  std::string folder = testing::TempDir() + "program_test.XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  SimulatorProcess simulator({"--devices", "2", "--control", folder + "/control"});
  std::vector<std::string> words{"ctl", "--control", folder + "/control"};
  words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());

  const support::Finished finished = RunSimulator(words);

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: " + GetParam().told + "\n");
  simulator.End(SIGTERM);
  rmdir(folder.c_str());
}

INSTANTIATE_TEST_SUITE_P(
    All, BadWishes,
    testing::Values(
        BadWish{"Device", {"--device", "3", "state"}, "there is no device 3, only 1 to 2"},
        BadWish{"Daemon", {"stop", "dapi"}, "'dapi' is no daemon: NetworkManager, DAPI"},
        BadWish{
            "Fault", {"fault", "GetName:drop,freeze"}, "one fault is enough, 'freeze' is another"},
        BadWish{"Method",
                {"clear", "GetBogus"},
                "no method is called 'GetBogus'; DAPI.* and NetworkManager.* stand for all of a "
                "daemon, * for all"}),
    [](const auto& instance) { return instance.param.name; });

struct BadOptions {
  std::string name;
  std::vector<std::string> options;
  std::string culprit;
};

std::ostream& operator<<(std::ostream& out, const BadOptions& bad) { return out << bad.name; }

class BadOptionsOfProgram : public testing::TestWithParam<BadOptions> {};

TEST_P(BadOptionsOfProgram, AreNamedAndEndItWithStatusTwo) {
  const support::Finished finished = RunSimulator(GetParam().options);

  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_THAT(finished.err, StartsWith("networkgrpc-simulator: "));
  EXPECT_THAT(finished.err, HasSubstr(GetParam().culprit));
  EXPECT_THAT(finished.err, HasSubstr("--help"));
}

INSTANTIATE_TEST_SUITE_P(
    All, BadOptionsOfProgram,
    testing::Values(
        BadOptions{"UnknownOption", {"--bogus"}, "--bogus"},
        BadOptions{"Word", {"surplus"}, "surplus"},
        BadOptions{"PortIsNoNumber", {"--dapi-port", "http"}, "http"},
        BadOptions{"PortTooLarge", {"--dapi-port", "65536"}, "0 to 65535"},
        BadOptions{"PortNegative", {"--network-manager-port=-1"}, "--network-manager-port"},
        BadOptions{"NoValue", {"--rx-channels"}, "--rx-channels"},
        BadOptions{"TooManyChannels", {"--tx-channels", "513"}, "0 to 512"},
        BadOptions{"CtlWithoutCommand", {"ctl"}, "A command is missing"},
        BadOptions{"CtlWithOptionsOfAnother", {"--devices", "2", "ctl", "state"}, "--devices"},
        BadOptions{"CtlCommandUnknown", {"ctl", "bogus"}, "bogus"},
        BadOptions{"CtlArgumentMissing", {"ctl", "stop"}, "DAEMON"},
        BadOptions{"CtlArgumentSurplus", {"ctl", "state", "surplus"}, "surplus"},
        BadOptions{"NoDevice", {"--devices", "0"}, "1 to 64"},
        BadOptions{"PortsOfSeveral", {"--devices", "2", "--dapi-port", "5000"}, "--devices"},
        BadOptions{"StatesForSome", {"--devices", "3", "--state", "a", "--state", "b"}, "--state"},
        BadOptions{"SavesForSome", {"--devices", "2", "--save", "a"}, "--save"},
        BadOptions{"SavesToOneFile", {"--devices", "2", "--save", "a", "--save", "a"}, "one file"},
        BadOptions{"Fault", {"--fault", "GetBogus:drop"}, "GetBogus"},
        BadOptions{"SamePortTwice",
                   {"--dapi-port", "5000", "--network-manager-port", "5000"},
                   "--network-manager-port"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
