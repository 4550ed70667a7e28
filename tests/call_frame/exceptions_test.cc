// A std::exception inside a function prints the line of the function and returns false.
#include <gtest/gtest.h>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/failing_new.h"
#include "support/show.h"

// Of LeakSanitizer, if it is there.
extern "C" __attribute__((weak)) void __lsan_disable();  // NOLINT(bugprone-reserved-identifier)

namespace {

using support::CapturedStderr;
using support::DapiPath;
using support::Device;
using support::NetworkManagerPath;
using support::Reply;

// Only copies of the string below allocate this much.
constexpr std::size_t kHuge = 300000;
const std::string kHugeText(kHuge, 'x');

// The last allocation of that size is for what the caller receives: the ones before it are
// for the request and the reply.
template <class Call>
bool CallFailingAtTheLast(Call&& call) {
  support::FailAllocation(0, kHuge);
  EXPECT_TRUE(call());
  const std::size_t last = support::AllocationsSeen();
  EXPECT_GT(last, 0U);
  support::FailAllocation(last, kHuge);
  const bool done = call();
  EXPECT_EQ(support::AllocationsSeen(), last);
  return done;
}

// The string is moved to the caller: the allocation is in gRPC, which then frees nothing of
// the call.
TEST(Exception, ParsingAStringFails_PrintsNameAndTextAndLeavesTheOutput) {
  if (__lsan_disable != nullptr) __lsan_disable();
  Device device;
  ostrevan::networkmanager::Hostname reply;
  reply.set_hostname(kHugeText);
  device.network_manager->Script(NetworkManagerPath("GetHostname"), Reply(reply));
  CapturedStderr captured;
  std::string hostname;

  const bool done = CallFailingAtTheLast([&] {
    hostname = "before";
    hostname.shrink_to_fit();
    return NetworkgRPC::GetHostname(hostname);
  });

  EXPECT_FALSE(done);
  EXPECT_EQ(hostname, "before");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: C++ exception in GetHostname(): std::bad_alloc\n");
}

TEST(Exception, CopyingASwitchModeOutFails_PrintsNameOnlyAndLeavesTheOutput) {
  Device device;
  ostrevan::networkmanager::SwitchMode reply;
  reply.set_id(2);
  reply.set_name(kHugeText);
  device.network_manager->Script(NetworkManagerPath("GetSwitchModeStatus"), Reply(reply));
  CapturedStderr captured;
  NetworkgRPC::SwitchMode mode;

  const bool done = CallFailingAtTheLast([&] {
    mode = {7, "before"};
    return NetworkgRPC::GetCurrentSwitchMode(mode);
  });

  EXPECT_FALSE(done);
  EXPECT_EQ(support::Show(mode), "{7 before}");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: exception in GetCurrentSwitchMode\n");
}

TEST(Exception, AppendingTheLastChannelFails_KeepsTheRecordsAppendedBefore) {
  Device device;
  ostrevan::grpcdapi::Channels reply;
  reply.add_channels()->set_name("small");
  reply.add_channels()->set_name(kHugeText);
  device.dapi->Script(DapiPath("GetTxChannels"), Reply(reply));
  CapturedStderr captured;
  std::vector<DantegRPC::Channel> channels;

  const bool done = CallFailingAtTheLast([&] {
    channels = {{9, "before"}};
    return DantegRPC::GetTxChannels(channels);
  });

  EXPECT_FALSE(done);
  EXPECT_EQ(support::Show(channels), "[{9 before}{0 small}]");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: exception in GetTxChannels\n");
}

TEST(Exception, AppendingSampleRatesFails_AppendsNone) {
  Device device;
  ostrevan::grpcdapi::AvailableSampleRates reply;
  for (int i = 0; i < 100000; ++i) reply.add_samplerates(48000);
  device.dapi->Script(DapiPath("GetAvailableSampleRates"), Reply(reply));
  CapturedStderr captured;
  std::vector<int> rates;

  const bool done = CallFailingAtTheLast([&] {
    rates = std::vector<int>{1};
    return DantegRPC::GetAvailableSampleRates(rates);
  });

  EXPECT_FALSE(done);
  EXPECT_EQ(support::Show(rates), "[(1)]");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: exception in GetAvailableSampleRates\n");
}

TEST(Exception, FillingARequestFails_MakesNoCall) {
  Device device;
  device.BuildClients();
  CapturedStderr captured;

  support::FailAllocation(1, kHuge);
  const bool done = DantegRPC::SetName(kHugeText);
  EXPECT_EQ(support::AllocationsSeen(), 1U);

  EXPECT_FALSE(done);
  EXPECT_TRUE(device.TakeRequests().empty());
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: C++ exception in SetName(): std::bad_alloc\n");
}

// The first allocation is the copy of the endpoint's string.
TEST(Exception, BuildingTheNetworkManagerClientFails_NextCallBuildsIt) {
  Device device;
  ostrevan::networkmanager::Hostname reply;
  reply.set_hostname("amp");
  device.network_manager->Script(NetworkManagerPath("GetHostname"), Reply(reply));
  CapturedStderr captured;
  std::string hostname = "before";

  support::FailAllocation(1, 0);
  EXPECT_FALSE(NetworkgRPC::GetHostname(hostname));
  support::AllocationsSeen();

  EXPECT_EQ(hostname, "before");
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: C++ exception in GetHostname(): std::bad_alloc\n");
  EXPECT_TRUE(device.TakeRequests().empty());
  EXPECT_TRUE(NetworkgRPC::GetHostname(hostname));
  EXPECT_EQ(hostname, "amp");
  EXPECT_EQ(NetworkManagerClient::GetInstance().GetControlInterfaceID(), support::kLan1);
}

TEST(Exception, BuildingTheDapiClientFails_ResetsTheFlagAndNextCallBuildsIt) {
  Device device;
  ostrevan::grpcdapi::Status reply;
  reply.set_status(true);
  device.dapi->Script(DapiPath("GetDisableTxStatus"), Reply(reply));
  CapturedStderr captured;
  bool disabled = true;

  support::FailAllocation(1, 0);
  EXPECT_FALSE(DantegRPC::GetDisableTx(disabled));
  support::AllocationsSeen();

  EXPECT_FALSE(disabled);
  EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: exception in GetDisableTx\n");
  EXPECT_TRUE(DantegRPC::GetDisableTx(disabled));
  EXPECT_TRUE(disabled);
}

TEST(Exception, BuildingAClientFailsWithoutAFacade_PassesToTheCaller) {
  Device device;

  support::FailAllocation(1, 0);
  EXPECT_THROW(DAPIClient::GetInstance(), std::bad_alloc);
  support::AllocationsSeen();

  EXPECT_NO_THROW(DAPIClient::GetInstance());
}

}  // namespace
