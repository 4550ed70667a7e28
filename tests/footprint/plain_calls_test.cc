// What a call takes from the heap beyond gRPC and the generated classes.
#include "footprint/plain_calls.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <set>
#include <string>

#include "allocation/own_code.h"
#include "support/captured_stderr.h"
#include "support/failing_new.h"
#include "support/functions.h"

namespace footprint {

void PrintTo(const PlainCall& call, std::ostream* out) { *out << call.name; }

}  // namespace footprint

namespace {

using footprint::PlainCall;

// What is handed out on the heap. Setters and scalar getters hand out nothing.
std::size_t HandedOut(const std::string& name) {
  static const std::map<std::string, std::size_t> lists = {
      {"GetAvailableSampleRates", 1},   // the list
      {"GetSwitchModes", 3},            // the list, which grows once, and one long name
      {"GetTxChannels", 4},             // the list, which grows once, and two names
      {"GetRxChannels", 4},             // the same
      {"GetTapping", 4},                // the list, which grows once, and two names
      {"GetControlInterfacesInfo", 3},  // the list, the MAC address and the client's copy of it
      {"cGetControlInterface", 3},      // the same
      {"GetDanteInterfacesInfo", 6},    // that for two interfaces
      {"GetAllIPv4", 9},                // the list, two MAC addresses, two indexes of ids
  };
  // One text, too long to be kept without the heap.
  static const std::set<std::string> texts = {
      "GetHostname",          "GetNTPServer",    "GetCurrentDNS",           "GetDefaultGateway",
      "GetMACAddress",        "GetName",         "GetFirmwareVersion",      "GetSoftwareVersion",
      "GetModelName",         "GetModelVersion", "GetConfiguredSwitchMode", "GetCurrentSwitchMode",
      "cGetCurrentSwitchMode"};
  const auto list = lists.find(name);
  return list != lists.end() ? list->second : texts.count(name);
}

class Allocations : public testing::TestWithParam<PlainCall> {
 protected:
  // The stack walk takes memory at its first use.
  void SetUp() override { allocation::CalledByOwnCode(); }
};

TEST_P(Allocations, WarmCall_OnlyWhatIsHandedOut) {
  support::Device device;
  device.BuildClients();
  ScriptForGood(device, support::AllFunctions());
  support::CapturedStderr captured;
  ASSERT_TRUE(GetParam().call());

  support::WatchAllocations({0, 0, false, &allocation::CalledByOwnCode});
  const bool done = GetParam().call();
  const std::size_t own = support::AllocationsSeen();

  EXPECT_TRUE(done);
  EXPECT_EQ(own, HandedOut(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(All, Allocations, testing::ValuesIn(footprint::PlainCalls()),
                         [](const auto& call) { return std::string(call.param.name); });

TEST(PlainCalls, Table_HasEveryFunctionOnce) {
  std::multiset<std::string> table;
  for (const auto& function : support::AllFunctions()) table.insert(function.name);
  std::multiset<std::string> plain;
  for (const PlainCall& call : footprint::PlainCalls()) plain.insert(call.name);
  EXPECT_EQ(plain, table);
}

}  // namespace
