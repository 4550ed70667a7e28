// Those limits of docs/limits.md that a short test can show. Fails if another version of
// gRPC changes one of them.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "tests/faults/child_daemon.h"
#include "tests/faults/faulty_peer.h"
#include "tests/faults/parallel_processes.h"

namespace {

using support::Device;
using support::NetworkManagerPath;
using support::ReservedPort;
using support::ScriptedDaemon;

std::string PortOf(const std::string& url) { return url.substr(url.rfind(':') + 1); }

support::Answer Named(const std::string& name) {
  ostrevan::networkmanager::Hostname reply;
  reply.set_hostname(name);
  return support::Reply(reply);
}

// A device whose endpoint is given by host name, as in the default.
class Limits : public testing::Test {
 protected:
  Limits() {
    for (const char* set : {"http_proxy", "https_proxy", "grpc_proxy", "no_grpc_proxy", "no_proxy"})
      unsetenv(set);
    device.network_manager->Script(NetworkManagerPath("GetHostname"), Named("the daemon's"));
    setenv("network_manager_url", ("localhost:" + port).c_str(), 1);
  }

  // The name of the daemon that answered; "" if the call failed.
  std::string AnsweredBy() {
    std::string name;
    return NetworkgRPC::GetHostname(name) ? name : "";
  }

  Device device;
  const std::string port = PortOf(device.network_manager->Url());
  support::CapturedStderr captured;
};

TEST_F(Limits, NothingSpecial_Works) { EXPECT_EQ(AnsweredBy(), "the daemon's"); }

class Proxy : public Limits, public testing::WithParamInterface<const char*> {};

TEST_P(Proxy, IsSet_CallsToLocalhostFail) {
  const ReservedPort nobody;
  setenv(GetParam(), ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);

  EXPECT_EQ(AnsweredBy(), "");
}

TEST_P(Proxy, IsSetButNotForLocalhost_Works) {
  const ReservedPort nobody;
  setenv(GetParam(), ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);
  setenv("no_grpc_proxy", "localhost,127.0.0.1,::1", 1);

  EXPECT_EQ(AnsweredBy(), "the daemon's");
}

INSTANTIATE_TEST_SUITE_P(Limits, Proxy, testing::Values("http_proxy", "https_proxy", "grpc_proxy"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(Limits, ProxyIsSetInUpperCase_Works) {
  const ReservedPort nobody;
  setenv("HTTP_PROXY", ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);

  EXPECT_EQ(AnsweredBy(), "the daemon's");
}

TEST_F(Limits, ForeignProcessOnIpv6Loopback_GetsTheCallsToLocalhost) {
  ScriptedDaemon foreign("[::1]:" + port);
  foreign.Script(NetworkManagerPath("GetHostname"), Named("foreign"));

  EXPECT_EQ(AnsweredBy(), "foreign");
}

TEST_F(Limits, ForeignProcessOnIpv6Loopback_GetsNothingWhenTheEndpointIsAnAddress) {
  ScriptedDaemon foreign("[::1]:" + port);
  foreign.Script(NetworkManagerPath("GetHostname"), Named("foreign"));
  setenv("network_manager_url", ("127.0.0.1:" + port).c_str(), 1);

  EXPECT_EQ(AnsweredBy(), "the daemon's");
  EXPECT_TRUE(foreign.TakeRequests().empty());
}

TEST_F(Limits, UnixSocketDespiteAProxy_Works) {
  const ReservedPort nobody;
  setenv("http_proxy", ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);
  const std::string path = testing::TempDir() + "limits-" + port + ".sock";
  ASSERT_LT(path.size(), 100U);
  setenv("network_manager_url", ("unix:" + path).c_str(), 1);
  ScriptedDaemon daemon("unix:" + path);
  daemon.Script(NetworkManagerPath("GetHostname"), Named("on the socket"));

  EXPECT_EQ(AnsweredBy(), "on the socket");
}

// An HTTP/2 server that does not support gRPC ends a call without a gRPC status. gRPC
// 1.51 then aborts the process.
TEST(OtherHttp2Server, AnswersACall_EndsTheProcess) {
  using namespace std::string_literals;
  const support::ReservedPort port;
  setenv("grpc_dapi_url", ("127.0.0.1:" + std::to_string(port.Number())).c_str(), 1);
  faults::PeerBehaviour behaviour;
  behaviour.greeting = "\0\0\0\x04\0\0\0\0\0"s;         // no settings of its own
  behaviour.reply = "\0\0\x01\x01\x05\0\0\0\x01\x88"s;  // stream 1: status 200, the end
  const faults::FaultyPeer server(port.Number(), behaviour);

  const faults::ResultCounts counts =
      faults::RunInParallelProcesses({{"call", [](faults::ResultCounts& counted) {
                                         std::string name;
                                         DantegRPC::GetName(name);
                                         counted.Count("call", true, "");
                                       }}});

  EXPECT_EQ(counts.as_expected, 0);
  EXPECT_NE(counts.failures.find("crashed"), std::string::npos) << counts.failures;
}

// A call that a running daemon never answers.
class HangingCall {
 public:
  HangingCall() {
    setenv("network_manager_url", ("127.0.0.1:" + std::to_string(port.Number())).c_str(), 1);
    daemon.Serve();
    daemon.Hang({NetworkManagerPath("GetHostname"), ""});
    done = std::async(std::launch::async, [] {
      std::string name;
      return NetworkgRPC::GetHostname(name);
    });
    EXPECT_TRUE(daemon.WaitForRequests(2));
  }

  bool WaitsFor(int seconds) {
    return done.wait_for(std::chrono::seconds(seconds)) == std::future_status::timeout;
  }

  void Freeze() { daemon.Freeze(); }

  bool FailsWhenTheDaemonDies() {
    daemon.Kill();
    return done.wait_for(std::chrono::seconds(60)) == std::future_status::ready && !done.get();
  }

 private:
  const support::CapturedStderr captured;
  std::future<bool> done;  // its destructor waits for the call, which ends with the daemon
  const support::ReservedPort port;
  faults::ChildDaemon daemon{port.Number()};
};

bool FullRun() { return std::getenv("NETWORKGRPC_FULL") != nullptr; }

// There is no deadline, and a running daemon answers the keepalive pings of a call that
// its handler never finishes. Only the end of the daemon ends the call.
TEST(StuckHandler, CallWaitsUntilTheDaemonDies) {
  HangingCall call;

  EXPECT_TRUE(call.WaitsFor(FullRun() ? 60 : 1));
  EXPECT_TRUE(call.FailsWhenTheDaemonDies());
}

// gRPC stops pinging after two pings without data, so a later freeze is not detected.
TEST(Full, DaemonFreezesAfterTheSecondPing_IsNotNoticed) {
  if (!FullRun()) GTEST_SKIP() << "only with NETWORKGRPC_FULL=1";
  HangingCall call;

  EXPECT_TRUE(call.WaitsFor(35));
  call.Freeze();
  EXPECT_TRUE(call.WaitsFor(60));
  EXPECT_TRUE(call.FailsWhenTheDaemonDies());
}

}  // namespace
