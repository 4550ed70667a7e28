// The simulator as a program: options, ready line, signals, exit status, ctl.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "NetworkgRPC_version.h"
#include "simulator/simulator.h"
#include "support/run_program.h"
#include "tests/simulator/program_in_folder.h"
#include "tests/simulator/stubs.h"

namespace {

using support::Ask;
using support::DanteStub;
using support::NetworkStub;
using support::Port;
using support::ProgramInFolder;
using support::RunSimulator;
using support::SimulatorProcess;
using support::Stubs;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

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

TEST(Program, Started_PrintsOneReadyLine) {
  const SimulatorProcess simulator;

  EXPECT_THAT(simulator.ReadyLine(),
              MatchesRegex("ready network_manager_url=127\\.0\\.0\\.1:[0-9]+ "
                           "grpc_dapi_url=127\\.0\\.0\\.1:[0-9]+\n"));
}

TEST(Program, CalledByEveryNameOfTheLoopback_Answers) {
  const SimulatorProcess simulator;
  std::vector<std::string> hosts{"127.0.0.1:", "localhost:"};
  if (HasIpv6Loopback()) hosts.emplace_back("[::1]:");

  for (const std::string& host : hosts) {
    const Stubs stubs(host + Port(simulator.NetworkManagerUrl()), host + Port(simulator.DapiUrl()));
    EXPECT_EQ(Ask(*stubs.network, &NetworkStub::GetHostname).hostname(), "amplifier") << host;
    EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetSampleRate).samplerate(), 48000U) << host;
  }
}

TEST(Program, ChannelCountsGiven_HasAsManyChannelsWithDefaultNames) {
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
  std::optional<simulator::Simulator> other(std::in_place);
  const std::string network_manager = Port(other->NetworkManagerUrl());
  const std::string dapi = Port(other->DapiUrl());
  other.reset();  // both ports are free again

  const SimulatorProcess simulator(
      {"--network-manager-port", network_manager, "--dapi-port", dapi});

  EXPECT_EQ(Port(simulator.NetworkManagerUrl()), network_manager);
  EXPECT_EQ(Port(simulator.DapiUrl()), dapi);
}

TEST(Program, TerminatedInterruptedOrHungUp_ExitsWithStatusZero) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    SimulatorProcess simulator;
    const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
    Ask(*stubs.dante, &DanteStub::GetName);  // a connection is open

    EXPECT_EQ(simulator.End(signal), 0) << "signal " << signal;
  }
}

TEST(Program, HangupIsIgnored_RunsOn) {
  std::signal(SIGHUP, SIG_IGN);  // as nohup does
  SimulatorProcess simulator;
  std::signal(SIGHUP, SIG_DFL);
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());

  simulator.Signal(SIGHUP);

  EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetName).name(), "Amplifier-520001");
  EXPECT_EQ(simulator.End(SIGTERM), 0);
}

TEST(Program, StandardOutputIsFull_PrintsThisAndExitsWithStatusOne) {
  const support::Finished finished = support::Run(
      {"/bin/sh", "-c", "exec timeout 20 \"$0\" >/dev/full", support::SimulatorProgram()});

  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.err,
            "networkgrpc-simulator: cannot print the ready line: standard output: No space left "
            "on device\n");
}

TEST(Program, PortInUse_PrintsWhichAndExitsWithStatusOne) {
  const simulator::Simulator other;
  const std::string port = Port(other.DapiUrl());

  const support::Finished finished = RunSimulator({"--network-manager-port", port});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: cannot listen on 127.0.0.1:" + port +
                              ": Address already in use; use another port, or 0 for a free "
                              "port\n");
}

TEST(Program, Help_NamesEveryOption) {
  const support::Finished finished = RunSimulator({"--help"});

  EXPECT_EQ(finished.status, 0);
  for (const char* option :
       {"--network-manager-port", "--dapi-port", "--tx-channels", "--rx-channels", "--help",
        "--version", "--state", "--save", "--fault", "--devices", "--control", "--device"})
    EXPECT_THAT(finished.out, HasSubstr(option));
}

TEST(Program, Version_IsThatOfTheProject) {
  const support::Finished finished = RunSimulator({"--version"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out, "networkgrpc-simulator " NETWORKGRPC_VERSION "\n");
}

// --- States, faults, several devices, ctl --------------------------------------

bool SetName(const Stubs& stubs, const std::string& to) {
  ostrevan::grpcdapi::Name name;
  name.set_name(to);
  return Ask(*stubs.dante, &DanteStub::SetName, name).success();
}

TEST_F(ProgramInFolder, StateSaved_NextRunStartsWithIt) {
  SimulatorProcess first({"--save", Path("first.json"), "--fault", "GetHostname:drop,times=3"});
  const Stubs stubs(first.NetworkManagerUrl(), first.DapiUrl());
  ostrevan::networkmanager::Id mode;
  mode.set_id(2);
  EXPECT_TRUE(SetName(stubs, "Hall"));
  EXPECT_TRUE(Ask(*stubs.network, &NetworkStub::SetSwitchMode, mode).success());  // not in effect
  EXPECT_EQ(first.End(SIGTERM), 0);

  SimulatorProcess second({"--state", Path("first.json"), "--save", Path("second.json")});
  const Stubs next(second.NetworkManagerUrl(), second.DapiUrl());

  EXPECT_EQ(Ask(*next.dante, &DanteStub::GetName).name(), "Hall");
  EXPECT_EQ(Ask(*next.network, &NetworkStub::GetSwitchMode).id(), 2);
  EXPECT_EQ(Ask(*next.network, &NetworkStub::GetSwitchModeStatus).id(), 0);
  EXPECT_EQ(second.End(SIGTERM), 0);
  EXPECT_EQ(Content("second.json"), Content("first.json"));
  EXPECT_EQ(nlohmann::json::parse(Content("first.json"))["faults"][0]["times"], 3);
}

TEST_F(ProgramInFolder, OneFault_ActsTheSameFromFileOptionAndCtl) {
  std::ofstream(Path("first.json")) << R"({"schema": 1, "faults": [ // one
             {"method": "SetName", "fault": "reject", "times": 1}]})";
  const SimulatorProcess by_file({"--state", Path("first.json")});
  const SimulatorProcess by_option({"--fault", "SetName:reject,times=1"});
  const SimulatorProcess by_ctl({"--control", Path("control")});
  EXPECT_EQ(Ctl({"fault", "SetName:reject,times=1"}), "");

  for (const SimulatorProcess* simulator : {&by_file, &by_option, &by_ctl}) {
    const Stubs stubs(simulator->NetworkManagerUrl(), simulator->DapiUrl());
    EXPECT_FALSE(SetName(stubs, "rejected"));
    EXPECT_TRUE(SetName(stubs, "done"));
    EXPECT_EQ(Ask(*stubs.dante, &DanteStub::GetName).name(), "done");
  }
}

TEST_F(ProgramInFolder, CtlCalls_PrintsMethodRequestAndFaultUntilForgotten) {
  const SimulatorProcess simulator(
      {"--control", Path("control"), "--fault", "SetName:reject,times=1"});
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
  SetName(stubs, "Hall");
  Ask(*stubs.network, &NetworkStub::GetHostname);

  EXPECT_EQ(Ctl({"calls"}),
            "{\"number\":1,\"method\":\"DAPI.SetName\",\"request\":{\"name\":\"Hall\"},"
            "\"fault\":\"SetName:reject,times=1\"}\n"
            "{\"number\":2,\"method\":\"NetworkManager.GetHostname\",\"request\":{},"
            "\"fault\":null}\n");
  EXPECT_EQ(Ctl({"forget"}), "");
  EXPECT_EQ(Ctl({"calls"}), "");
}

TEST_F(ProgramInFolder, CtlState_PrintsTheCurrentState) {
  const SimulatorProcess simulator({"--control", Path("control")});
  const Stubs stubs(simulator.NetworkManagerUrl(), simulator.DapiUrl());
  SetName(stubs, "Hall");

  const auto state = nlohmann::json::parse(Ctl({"state"}));

  EXPECT_EQ(state["dante"]["name"], "Hall");
  EXPECT_EQ(state["network"]["interfaces"].size(), 4U);
}

TEST_F(ProgramInFolder, ThreeDevices_EachHasItsOwnPortsStateAndFaults) {
  SimulatorProcess simulator({"--devices", "3", "--control", Path("control")});
  std::vector<Stubs> devices;
  std::set<std::string> urls;
  for (int number = 1; number <= 3; ++number) {
    if (number > 1) simulator.NextDevice();
    devices.emplace_back(simulator.NetworkManagerUrl(), simulator.DapiUrl());
    urls.insert({simulator.NetworkManagerUrl(), simulator.DapiUrl()});
  }
  EXPECT_EQ(urls.size(), 6U);
  EXPECT_EQ(Ctl({"--device", "2", "fault", "SetName:reject"}), "");

  EXPECT_TRUE(SetName(devices[0], "one"));
  EXPECT_FALSE(SetName(devices[1], "two"));
  EXPECT_TRUE(SetName(devices[2], "three"));

  std::vector<std::string> names;
  for (const Stubs& stubs : devices) names.push_back(Ask(*stubs.dante, &DanteStub::GetName).name());
  EXPECT_THAT(names, ElementsAre("one", "Amplifier-520002", "three"));
  EXPECT_EQ(Ctl({"faults", "--device", "2"}), "SetName:reject\n");
  EXPECT_EQ(Ctl({"faults", "--device", "1"}), "");
}

TEST_F(ProgramInFolder, TwoDevicesWithAStateEach_EachIsSaved) {
  std::ofstream(Path("first.json")) << R"({"schema": 1, "dante": {"name": "one"}})";
  std::ofstream(Path("second.json")) << R"({"schema": 1, "dante": {"name": "two"}})";
  SimulatorProcess simulator({"--devices", "2", "--state", Path("first.json"), "--state",
                              Path("second.json"), "--save", Path("second.json"), "--save",
                              Path("first.json")});
  simulator.NextDevice();
  EXPECT_EQ(simulator.End(SIGINT), 0);

  std::vector<std::string> names;
  for (const char* file : {"first.json", "second.json"})
    names.push_back(nlohmann::json::parse(Content(file))["dante"]["name"]);
  EXPECT_THAT(names, ElementsAre("two", "one"));
}

TEST_F(ProgramInFolder, HungUp_StateIsSaved) {
  SimulatorProcess simulator({"--save", Path("first.json")});
  EXPECT_EQ(simulator.End(SIGHUP), 0);
  EXPECT_EQ(nlohmann::json::parse(Content("first.json"))["dante"]["name"], "Amplifier-520001");
}

TEST_F(ProgramInFolder, OneFileCannotBeSavedAnyMore_TheOthersAreAndTheStatusIsOne) {
  SimulatorProcess simulator(
      {"--devices", "2", "--save", Path("first.json"), "--save", Path("second.json")});
  simulator.NextDevice();
  ASSERT_EQ(mkdir(Path("first.json").c_str(), 0700), 0);

  EXPECT_EQ(simulator.End(SIGTERM), 1);

  EXPECT_EQ(nlohmann::json::parse(Content("second.json"))["dante"]["name"], "Amplifier-520002");
}

TEST_F(ProgramInFolder, ErrorsOfSavingCannotBePrinted_TheOtherFilesAreSaved) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
  const int before = dup(STDERR_FILENO);
  dup2(pipe[1], STDERR_FILENO);
  SimulatorProcess simulator(
      {"--devices", "2", "--save", Path("first.json"), "--save", Path("second.json")});
  dup2(before, STDERR_FILENO);
  for (const int file : {pipe[0], pipe[1], before}) close(file);  // nobody reads the errors
  simulator.NextDevice();
  ASSERT_EQ(mkdir(Path("first.json").c_str(), 0700), 0);

  EXPECT_EQ(simulator.End(SIGTERM), 1);

  EXPECT_EQ(nlohmann::json::parse(Content("second.json"))["dante"]["name"], "Amplifier-520002");
}

TEST_F(ProgramInFolder, SavesToWhatIsNoRegularFile_FailsBeforeAnythingStarts) {
  ASSERT_EQ(symlink("/dev/full", Path("first.json").c_str()), 0);

  const support::Finished finished = RunSimulator({"--save", Path("first.json")});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err,
            "networkgrpc-simulator: cannot write " + Path("first.json") + ": not a regular file\n");
}

TEST_F(ProgramInFolder, SavesTwoDevicesToOneFileOfTwoNames_FailsBeforeAnythingStarts) {
  ASSERT_EQ(symlink("second.json", Path("first.json").c_str()), 0);

  const support::Finished finished = RunSimulator(
      {"--devices", "2", "--save", Path("first.json"), "--save", Path("./second.json")});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: cannot save two devices to one file: " +
                              Path("first.json") + " and " + Path("./second.json") + "\n");
}

TEST_F(ProgramInFolder, FileCannotBeSaved_FailsBeforeAnythingStarts) {
  const support::Finished finished = RunSimulator({"--save", Path("none/state.json")});

  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, IsEmpty());
  EXPECT_EQ(finished.err, "networkgrpc-simulator: cannot write " + Path("none/state.json") +
                              ": cannot use folder " + Path("none/") +
                              ": No such file or directory\n");
}

TEST_F(ProgramInFolder, CtlRequestsThatFail_PrintTheReason) {
  const SimulatorProcess simulator({"--devices", "2", "--control", Path("control")});
  const std::vector<std::pair<std::vector<std::string>, std::string>> requests{
      {{"--device", "3", "state"}, "unknown device 3; use 1 to 2"},
      {{"stop", "dapi"}, "unknown daemon 'dapi'; use NetworkManager or DAPI"},
      {{"fault", "GetName:drop,freeze"}, "'freeze' is a second fault; METHOD:FAULT has only one"},
      {{"clear", "GetBogus"},
       "unknown method 'GetBogus'; DAPI.* and NetworkManager.* match all methods of a daemon, * "
       "all methods"}};

  for (const auto& [request, reason] : requests) {
    std::vector<std::string> words{"ctl", "--control", Path("control")};
    words.insert(words.end(), request.begin(), request.end());

    const support::Finished finished = RunSimulator(words);

    EXPECT_EQ(finished.status, 1) << reason;
    EXPECT_THAT(finished.out, IsEmpty());
    EXPECT_EQ(finished.err, "networkgrpc-simulator: " + reason + "\n");
  }
}

struct BadOptions {
  std::string name;
  std::vector<std::string> options;
  std::string culprit;
};

std::ostream& operator<<(std::ostream& out, const BadOptions& bad) { return out << bad.name; }

class BadOptionsOfProgram : public testing::TestWithParam<BadOptions> {};

TEST_P(BadOptionsOfProgram, AreNamedAndExitStatusIsTwo) {
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
        BadOptions{"CtlWithoutCommand", {"ctl"}, "a command is required"},
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
