// No memory for the library's own copies: every function returns false, prints the line
// of a caught exception, keeps what it promises of its outputs, leaks nothing and works
// again at the next call.
//
// gRPC ends the process when it gets no memory, so none of its allocations may fail, nor
// those of protobuf: see CMakeLists.txt for how the library's own are distinguished from them.
#include <gtest/gtest.h>

#include <cstring>
#include <new>

#include "NetworkgRPC_c.h"
#include "support/captured_stderr.h"
#include "support/failing_new.h"
#include "support/functions.h"

namespace {

using support::Device;
using support::Function;

struct Outcome {
  bool result = false;
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
  support::WatchAllocations({fail, 0, from_then_on, true});
  outcome.result = function.call(outcome.outputs);
  outcome.allocations = support::AllocationsSeen();
  outcome.alive = support::AllocationsAlive();
  outcome.printed = captured.Take();
  return outcome;
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
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.outputs, function.outputs);
  EXPECT_EQ(outcome.printed, function.printed);
}

void ExpectOutOfMemory(const Function& function, const Outcome& outcome) {
  EXPECT_FALSE(outcome.result);
  EXPECT_PRED2(MayBeLeft, outcome.outputs, function);
  EXPECT_EQ(outcome.printed, function.printed + function.exception_line);
  EXPECT_EQ(outcome.alive, 0U);
}

class OutOfMemory : public testing::TestWithParam<Function> {
 protected:
  void FailEveryOwnAllocation(bool from_then_on) {
    Device device;
    device.BuildClients();
    ScriptAlways(device, {GetParam()});
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

  // Building the client fails once for each of its allocations.
  void FailWhileTheClientIsBuilt(bool from_then_on) {
    Device device;
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE(testing::Message() << "own allocation " << k);
      ASSERT_LT(k, 100U);
      if (Building(device, k, from_then_on)) continue;
      // One for the string of the endpoint and one for the name of each argument.
      EXPECT_GT(k, 4U);
      break;
    }
    ScriptAlways(device, {GetParam()});
    ExpectSuccess(GetParam(), Call(GetParam(), 0, false));
  }

 private:
  // These allocate at least that; a single string is moved out of the reply.
  static bool HandsOutListOrRecord() {
    const std::string& outputs = GetParam().outputs;
    return !outputs.empty() && std::strchr("]}>", outputs.back()) != nullptr;
  }

  // Whether the call failed for lack of memory; if so, checks what it left behind.
  static bool Building(Device& device, std::size_t k, bool from_then_on) {
    const Outcome outcome = Call(GetParam(), k, from_then_on);
    const auto requests = device.TakeRequests();
    // More than the discovery: the client is built, and the function's own call was made.
    if (requests.size() > 1 || outcome.printed.find("exception") == std::string::npos) return false;
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.outputs, GetParam().failed_outputs);
    EXPECT_EQ(outcome.printed, GetParam().printed + GetParam().exception_line);
    EXPECT_EQ(outcome.alive, 0U);
    for (const support::Request& request : requests)
      EXPECT_EQ(request.path, support::NetworkManagerPath("GetAvailableInterfaces"));
    return true;
  }
};

TEST_P(OutOfMemory, OneOwnAllocationFails_PrintsTheExceptionLineAndReturnsFalse) {
  FailEveryOwnAllocation(false);
}

TEST_P(OutOfMemory, OwnAllocationsFailFromOneOn_PrintsTheExceptionLineAndReturnsFalse) {
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

// The library lets it pass, and nothing is half built after it.
TEST_P(NoStdExceptionThrown, WhileItsClientIsBuilt_PassesToTheCallerAndNextCallBuildsIt) {
  Device device;
  ScriptAlways(device, {GetParam()});
  std::string outputs;
  support::CapturedStderr captured;

  support::WatchAllocations({1, 0, false, true, [] { throw NoStdException(); }});
  EXPECT_THROW(GetParam().call(outputs), NoStdException);
  EXPECT_EQ(support::AllocationsSeen(), 1U);

  EXPECT_EQ(captured.Take(), GetParam().printed);
  ExpectSuccess(GetParam(), Call(GetParam(), 0, false));
}

INSTANTIATE_TEST_SUITE_P(Library, NoStdExceptionThrown, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

// For a name of this size the library allocates the string that it passes on.
TEST(SetAmpName, NoMemoryForTheStringOfALongName_PassesTheExceptionOnAndWorksAgain) {
  Device device;
  device.BuildClients();
  device.network_manager->Script(support::NetworkManagerPath("SetHostname"),
                                 {std::string("\x08\x01", 2)});
  const std::string name(40, 'a');
  const std::string line = "libNetworkgRPC: setting hostname: " + name + " 40\n";
  support::CapturedStderr captured;

  support::WatchAllocations({1, 0, true, true});
  EXPECT_THROW(setampname(name.c_str(), name.size()), std::bad_alloc);
  EXPECT_EQ(support::AllocationsSeen(), 1U);
  EXPECT_EQ(support::AllocationsAlive(), 0U);

  EXPECT_EQ(captured.Take(), line);
  EXPECT_TRUE(device.TakeRequests().empty());
  EXPECT_EQ(setampname(name.c_str(), name.size()), 0);
  EXPECT_EQ(captured.Take(), line);
}

// gRPC and protobuf allocate in every call; none of that is watched.
TEST(OwnCode, CallWithoutCopies_CountsNothingOfTheLayersBelow) {
  Device device;
  device.BuildClients();
  device.network_manager->Script(support::NetworkManagerPath("FactoryReset"),
                                 {std::string("\x08\x01", 2)});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());

  support::WatchAllocations({0, 0, false, true});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());
  EXPECT_EQ(support::AllocationsSeen(), 0U);
  support::WatchAllocations({});
  EXPECT_TRUE(NetworkgRPC::FactoryReset());
  EXPECT_GT(support::AllocationsSeen(), 0U);
}

}  // namespace
