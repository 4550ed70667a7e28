// What a call takes from the heap beyond gRPC and the generated classes.
#include "tests/footprint/plain_calls.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <set>
#include <string>

#include "tests/allocation/own_code.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/failing_new.h"
#include "tests/support/functions.h"

namespace footprint {

void PrintTo(const PlainCall& call, std::ostream* out) { *out << call.name; }

}  // namespace footprint

namespace {

using footprint::PlainCall;

// What is copied onto the heap. Setters and scalar getters copy nothing, and a single
// text is handed out as it came with the reply.
std::size_t HandedOut(const std::string& name) {
  static const std::map<std::string, std::size_t> copies = {
      {"GetConfiguredSwitchMode", 1},   // the mode's name
      {"GetCurrentSwitchMode", 1},      // the same
      {"cGetCurrentSwitchMode", 1},     // the same
      {"GetAvailableSampleRates", 1},   // the list
      {"GetSwitchModes", 2},            // the list and one long name
      {"GetTxChannels", 3},             // the list and two names
      {"GetRxChannels", 3},             // the same
      {"GetTapping", 3},                // the list and two names
      {"GetControlInterfacesInfo", 2},  // the list and the MAC address
      {"cGetControlInterface", 2},      // the same
      {"GetDanteInterfacesInfo", 3},    // the list and two MAC addresses
      {"GetAllIPv4", 5},                // the list, two MAC addresses, two indexes of ids
  };
  const auto found = copies.find(name);
  return found != copies.end() ? found->second : 0;
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
