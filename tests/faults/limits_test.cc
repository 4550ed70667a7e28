// The limits that docs/limits.md tells of, as far as they are cheap to show: a
// change of gRPC that moves one of them is noticed here.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "tests/faults/apart.h"
#include "tests/faults/child_daemon.h"
#include "tests/faults/rogue.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/device.h"

namespace {

using support::Device;
using support::NetworkManagerPath;
using support::RefusedPort;
using support::ScriptedDaemon;

std::string PortOf(const std::string& url) { return url.substr(url.rfind(':') + 1); }

support::Answer Named(const std::string& name) {
  ostrevan::networkmanager::Hostname reply;
  reply.set_hostname(name);
  return support::Reply(reply);
}

// A device whose endpoint names the host as the default does.
class Limits : public testing::Test {
 protected:
  Limits() {
    for (const char* set : {"http_proxy", "https_proxy", "grpc_proxy", "no_grpc_proxy", "no_proxy"})
      unsetenv(set);
    device.network_manager->Script(NetworkManagerPath("GetHostname"), Named("the daemon's"));
    setenv("network_manager_url", ("localhost:" + port).c_str(), 1);
  }

  // Tells by whom the call was answered; "" when it failed.
  std::string Ask() {
    std::string name;
    return NetworkgRPC::GetHostname(name) ? name : "";
  }

  Device device;
  const std::string port = PortOf(device.network_manager->Url());
  support::CapturedStderr captured;
};

TEST_F(Limits, NothingSpecial_Works) { EXPECT_EQ(Ask(), "the daemon's"); }

class Proxy : public Limits, public testing::WithParamInterface<const char*> {};

TEST_P(Proxy, IsSet_CallsToLocalhostFail) {
  const RefusedPort nobody;
  setenv(GetParam(), ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);

  EXPECT_EQ(Ask(), "");
}

TEST_P(Proxy, IsSetButNotForLocalhost_Works) {
  const RefusedPort nobody;
  setenv(GetParam(), ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);
  setenv("no_grpc_proxy", "localhost,127.0.0.1,::1", 1);

  EXPECT_EQ(Ask(), "the daemon's");
}

INSTANTIATE_TEST_SUITE_P(Limits, Proxy, testing::Values("http_proxy", "https_proxy", "grpc_proxy"));

TEST_F(Limits, ProxyIsSetInUpperCase_Works) {
  const RefusedPort nobody;
  setenv("HTTP_PROXY", ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);

  EXPECT_EQ(Ask(), "the daemon's");
}

TEST_F(Limits, ForeignProcessOnIpv6Loopback_GetsTheCallsToLocalhost) {
  ScriptedDaemon foreign("[::1]:" + port);
  foreign.Script(NetworkManagerPath("GetHostname"), Named("foreign"));

  EXPECT_EQ(Ask(), "foreign");
}

TEST_F(Limits, ForeignProcessOnIpv6Loopback_GetsNothingWhenTheEndpointIsAnAddress) {
  ScriptedDaemon foreign("[::1]:" + port);
  foreign.Script(NetworkManagerPath("GetHostname"), Named("foreign"));
  setenv("network_manager_url", ("127.0.0.1:" + port).c_str(), 1);

  EXPECT_EQ(Ask(), "the daemon's");
  EXPECT_TRUE(foreign.TakeRequests().empty());
}

TEST_F(Limits, UnixSocketDespiteAProxy_Works) {
  const RefusedPort nobody;
  setenv("http_proxy", ("http://127.0.0.1:" + PortOf(nobody.Url())).c_str(), 1);
  const std::string path = testing::TempDir() + "limits-" + port + ".sock";
  ASSERT_LT(path.size(), 100U);
  setenv("network_manager_url", ("unix:" + path).c_str(), 1);
  ScriptedDaemon daemon("unix:" + path);
  daemon.Script(NetworkManagerPath("GetHostname"), Named("on the socket"));

  EXPECT_EQ(Ask(), "on the socket");
}

// A server of HTTP/2 that knows nothing of gRPC ends a call without the status
// that every gRPC server sends. gRPC 1.51 ends the process then.
TEST(OtherHttp2Server, AnswersACall_EndsTheProcess) {
  using namespace std::string_literals;
  const faults::ReservedPort port;
  setenv("grpc_dapi_url", ("127.0.0.1:" + std::to_string(port.Number())).c_str(), 1);
  faults::Manners manners;
  manners.says = "\0\0\0\x04\0\0\0\0\0"s;               // no settings of its own
  manners.answers = "\0\0\x01\x01\x05\0\0\0\x01\x88"s;  // stream 1: status 200, the end
  const faults::Rogue server(port.Number(), manners);

  const faults::Tally tally = faults::RunApart({{"call", [](faults::Tally& counted) {
                                                   std::string name;
                                                   DantegRPC::GetName(name);
                                                   counted.Count("call", true, "");
                                                 }}});

  EXPECT_EQ(tally.as_expected, 0);
  EXPECT_NE(tally.failures.find("crashed"), std::string::npos) << tally.failures;
}

// There is no deadline, and a daemon that is alive answers the keepalive for its
// stuck handler. Only the end of the daemon ends the call.
TEST(StuckHandler, CallWaitsUntilTheDaemonDies) {
  const bool full = std::getenv("NETWORKGRPC_FULL") != nullptr;
  const std::chrono::seconds long_enough(full ? 60 : 1);
  const faults::ReservedPort port;
  setenv("network_manager_url", ("127.0.0.1:" + std::to_string(port.Number())).c_str(), 1);
  faults::ChildDaemon daemon(port.Number());
  daemon.Serve();
  daemon.Hang({NetworkManagerPath("GetHostname"), ""});
  const support::CapturedStderr captured;

  auto call = std::async(std::launch::async, [] {
    std::string name;
    return NetworkgRPC::GetHostname(name);
  });
  ASSERT_TRUE(daemon.WaitForRequests(2));
  EXPECT_EQ(call.wait_for(long_enough), std::future_status::timeout);

  daemon.Kill();
  ASSERT_EQ(call.wait_for(std::chrono::seconds(60)), std::future_status::ready);
  EXPECT_FALSE(call.get());
}

// gRPC stops to ping after two pings without data. A daemon that freezes later
// than that is not noticed any more.
TEST(Full, DaemonFreezesAfterTheSecondPing_IsNotNoticed) {
  if (std::getenv("NETWORKGRPC_FULL") == nullptr) GTEST_SKIP() << "only with NETWORKGRPC_FULL=1";
  const faults::ReservedPort port;
  setenv("network_manager_url", ("127.0.0.1:" + std::to_string(port.Number())).c_str(), 1);
  faults::ChildDaemon daemon(port.Number());
  daemon.Serve();
  daemon.Hang({NetworkManagerPath("GetHostname"), ""});
  const support::CapturedStderr captured;

  auto call = std::async(std::launch::async, [] {
    std::string name;
    return NetworkgRPC::GetHostname(name);
  });
  ASSERT_TRUE(daemon.WaitForRequests(2));
  EXPECT_EQ(call.wait_for(std::chrono::seconds(35)), std::future_status::timeout);
  daemon.Freeze();
  EXPECT_EQ(call.wait_for(std::chrono::seconds(60)), std::future_status::timeout);

  daemon.Kill();
  ASSERT_EQ(call.wait_for(std::chrono::seconds(60)), std::future_status::ready);
  EXPECT_FALSE(call.get());
}

}  // namespace
