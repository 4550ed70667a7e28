// The simulator as a program: options, ready line, signals, exit status.
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

#include "simulator/simulator.h"
#include "simulator/simulator_process.h"
#include "simulator/stubs.h"
#include "support/child.h"

namespace {

using support::Ask;
using support::SimulatorProcess;
using support::Stubs;
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
  if (!HasIpv6Loopback()) GTEST_SKIP() << "no IPv6 loopback here";
  const SimulatorProcess simulator;

  const Stubs stubs("[::1]:" + Port(simulator.NetworkManagerUrl()),
                    "[::1]:" + Port(simulator.DapiUrl()));

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
  for (const char* option : {"--network-manager-port", "--dapi-port", "--tx-channels",
                             "--rx-channels", "--help", "--version"})
    EXPECT_THAT(finished.out, HasSubstr(option));
}

TEST(Program, Version_IsTheProjects) {
  const support::Finished finished = RunSimulator({"--version"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out, "networkgrpc-simulator " NETWORKGRPC_VERSION "\n");
}

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
    testing::Values(BadOptions{"UnknownOption", {"--bogus"}, "--bogus"},
                    BadOptions{"Word", {"surplus"}, "surplus"},
                    BadOptions{"PortIsNoNumber", {"--dapi-port", "http"}, "http"},
                    BadOptions{"PortTooLarge", {"--dapi-port", "65536"}, "0 to 65535"},
                    BadOptions{
                        "PortNegative", {"--network-manager-port=-1"}, "--network-manager-port"},
                    BadOptions{"NoValue", {"--rx-channels"}, "--rx-channels"},
                    BadOptions{"TooManyChannels", {"--tx-channels", "513"}, "0 to 512"},
                    BadOptions{"SamePortTwice",
                               {"--dapi-port", "5000", "--network-manager-port", "5000"},
                               "--network-manager-port"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
