// No memory for the library's own copies: every function gives false with the
// line of a caught exception, keeps what it promises of its outputs, leaks
// nothing and works again at the next call.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <set>

#include "NetworkgRPC_c.h"
#include "tests/allocation/own_code.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/failing_new.h"
#include "tests/support/functions.h"

namespace {

using support::Device;
using support::Function;

struct Outcome {
  bool done = false;
  std::string outputs = {};
  std::string printed = {};
  std::size_t allocations = 0;  // own ones
  std::size_t alive = 0;        // of these, not freed
};

// Calls the function while its own allocation number `fail` fails (0: none).
Outcome Call(const Function& function, std::size_t fail, bool from_then_on) {
  Outcome outcome;
  outcome.outputs.reserve(1000);
  support::CapturedStderr captured;
  support::WatchAllocations({fail, 0, from_then_on, &allocation::CalledByOwnCode});
  outcome.done = function.call(outcome.outputs);
  outcome.allocations = support::AllocationsSeen();
  outcome.alive = support::AllocationsAlive();
  outcome.printed = captured.Take();
  return outcome;
}

// The line of the facade function that catches what happens in `name`.
std::string ExceptionLine(std::string name) {
  static const std::set<std::string> name_only = {"GetSwitchModes",       "GetConfiguredSwitchMode",
                                                  "GetCurrentSwitchMode", "SetDisableTx",
                                                  "SetPtpSlaveOnly",      "GetSampleRate",
                                                  "GetLatency",           "GetAvailableSampleRates",
                                                  "GetAES67Available",    "GetAES67Status",
                                                  "GetDisableTx",         "GetPtpSlaveOnly",
                                                  "GetTxChannels",        "GetRxChannels",
                                                  "GetChannelsNum",       "GetTapping"};
  if (name == "cGetControlInterface") name = "GetControlInterfacesInfo";
  if (name == "cGetCurrentSwitchMode") name = "GetCurrentSwitchMode";
  if (name == "setampname") name = "SetHostname";
  if (name_only.count(name) != 0) return "libNetworkgRPC: ERROR: exception in " + name + "\n";
  return "libNetworkgRPC: C++ exception in " + name + "(): std::bad_alloc\n";
}

// A list may have grown by whole records of what it would have become; every
// other output is as it was.
bool MayBeLeft(const std::string& outputs, const Function& function) {
  if (outputs == function.failed_outputs) return true;
  if (outputs.empty() || outputs.back() != ']') return false;
  const std::string head = outputs.substr(0, outputs.size() - 1);
  const std::string before = function.failed_outputs.substr(0, function.failed_outputs.size() - 1);
  return head.rfind(before, 0) == 0 && function.outputs.rfind(head + "{", 0) == 0;
}

void ExpectSuccess(const Function& function, const Outcome& outcome) {
  EXPECT_EQ(outcome.done, function.done);
  EXPECT_EQ(outcome.outputs, function.outputs);
  EXPECT_EQ(outcome.printed, function.printed);
}

void ExpectOutOfMemory(const Function& function, const Outcome& outcome) {
  EXPECT_FALSE(outcome.done);
  EXPECT_PRED2(MayBeLeft, outcome.outputs, function);
  EXPECT_EQ(outcome.printed, function.printed + ExceptionLine(function.name));
  EXPECT_EQ(outcome.alive, 0U);
}

class OutOfMemory : public testing::TestWithParam<Function> {
 protected:
  // The unwinder and the stack walk take memory at their first use.
  void SetUp() override { allocation::CalledByOwnCode(); }

  void FailEveryOwnAllocation(bool from_then_on) {
    Device device;
    device.BuildClients();
    ScriptForGood(device, {GetParam()});
    Outcome healthy = Call(GetParam(), 0, false);
    ExpectSuccess(GetParam(), healthy);
    EXPECT_EQ(healthy.alive, 0U);
    RecordProperty("own_allocations", static_cast<int>(healthy.allocations));
    for (std::size_t k = 1; k <= healthy.allocations; ++k) {
      SCOPED_TRACE(testing::Message() << "own allocation " << k);
      ExpectOutOfMemory(GetParam(), Call(GetParam(), k, from_then_on));
      ExpectSuccess(GetParam(), Call(GetParam(), 0, false));
    }
    EXPECT_TRUE(healthy.allocations > 0 || !HandsOutListOrRecord());
  }

  // Building the client fails until every allocation of it has been the one.
  void FailWhileTheClientIsBuilt(bool from_then_on) {
    Device device;
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE(testing::Message() << "own allocation " << k);
      ASSERT_LT(k, 100U);
      if (Building(device, k, from_then_on)) continue;
      // One for the endpoint's text and one for the name of each argument.
      EXPECT_GT(k, 4U);
      break;
    }
    ScriptForGood(device, {GetParam()});
    ExpectSuccess(GetParam(), Call(GetParam(), 0, false));
  }

 private:
  // Whoever does has at least that to allocate; a single text comes out of the reply.
  static bool HandsOutListOrRecord() {
    const std::string& outputs = GetParam().outputs;
    return !outputs.empty() && std::strchr("]}>", outputs.back()) != nullptr;
  }

  // Whether the call failed for want of memory; then also what must be so.
  static bool Building(Device& device, std::size_t k, bool from_then_on) {
    const Outcome outcome = Call(GetParam(), k, from_then_on);
    const auto requests = device.TakeRequests();
    // More than the discovery: the client stands, and the function's own call was made.
    if (requests.size() > 1 || outcome.printed.find("exception") == std::string::npos) return false;
    EXPECT_FALSE(outcome.done);
    EXPECT_EQ(outcome.outputs, GetParam().failed_outputs);
    EXPECT_EQ(outcome.printed, GetParam().printed + ExceptionLine(GetParam().name));
    EXPECT_EQ(outcome.alive, 0U);
    for (const support::Request& request : requests)
      EXPECT_EQ(request.path, support::NetworkManagerPath("GetAvailableInterfaces"));
    return true;
  }
};

TEST_P(OutOfMemory, OneOwnAllocationFails_PrintsTheExceptionLineAndGivesFalse) {
  FailEveryOwnAllocation(false);
}

TEST_P(OutOfMemory, OwnAllocationsFailFromOneOn_PrintsTheExceptionLineAndGivesFalse) {
  FailEveryOwnAllocation(true);
}

TEST_P(OutOfMemory, OneAllocationFailsWhileItsClientIsBuilt_NextCallBuildsIt) {
  FailWhileTheClientIsBuilt(false);
}

TEST_P(OutOfMemory, AllocationsFailFromOneOnWhileItsClientIsBuilt_NextCallBuildsIt) {
  FailWhileTheClientIsBuilt(true);
}

INSTANTIATE_TEST_SUITE_P(Library, OutOfMemory, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

struct NoStdException {};

class NoStdExceptionThrown : public testing::TestWithParam<Function> {};

// Not the library's to judge, and nothing is half built after it.
TEST_P(NoStdExceptionThrown, WhileItsClientIsBuilt_PassesToTheCallerAndNextCallBuildsIt) {
  allocation::CalledByOwnCode();
  Device device;
  ScriptForGood(device, {GetParam()});
  std::string outputs;
  support::CapturedStderr captured;

  support::WatchAllocations(
      {1, 0, false, &allocation::CalledByOwnCode, [] { throw NoStdException(); }});
  EXPECT_THROW(GetParam().call(outputs), NoStdException);
  EXPECT_EQ(support::AllocationsSeen(), 1U);

  EXPECT_EQ(captured.Take(), GetParam().printed);
  ExpectSuccess(GetParam(), Call(GetParam(), 0, false));
}

INSTANTIATE_TEST_SUITE_P(Library, NoStdExceptionThrown, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

// A text of this size is allocated by the library for what it hands to gRPC.
TEST(SetAmpName, NoMemoryForTheTextOfALongName_PassesTheExceptionOnAndWorksAgain) {
  allocation::CalledByOwnCode();
  Device device;
  device.BuildClients();
  device.network_manager->Script(support::NetworkManagerPath("SetHostname"),
                                 {std::string("\x08\x01", 2)});
  const std::string name(40, 'a');
  const std::string line = "libNetworkgRPC: setting hostname: " + name + " 40\n";
  support::CapturedStderr captured;

  support::WatchAllocations({1, 0, true, &allocation::CalledByOwnCode});
  EXPECT_THROW(setampname(name.c_str(), name.size()), std::bad_alloc);
  EXPECT_EQ(support::AllocationsSeen(), 1U);
  EXPECT_EQ(support::AllocationsAlive(), 0U);

  EXPECT_EQ(captured.Take(), line);
  EXPECT_TRUE(device.TakeRequests().empty());
  EXPECT_EQ(setampname(name.c_str(), name.size()), 0);
  EXPECT_EQ(captured.Take(), line);
}

// gRPC and protobuf allocate in every call; none of that counts.
TEST(OwnCode, CallWithoutCopies_CountsNothingOfTheLayersBelow) {
  allocation::CalledByOwnCode();
  Device device;
  device.BuildClients();
  device.network_manager->Script(support::NetworkManagerPath("FactoryReset"),
                                 {std::string("\x08\x01", 2)});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());

  support::WatchAllocations({0, 0, false, &allocation::CalledByOwnCode});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());
  EXPECT_EQ(support::AllocationsSeen(), 0U);
  support::WatchAllocations({});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());
  EXPECT_GT(support::AllocationsSeen(), 0U);
}

}  // namespace
