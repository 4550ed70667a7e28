// How many allocations a call makes beyond those of gRPC and the generated classes.
#include <gtest/gtest.h>

#include "support/captured_stderr.h"
#include "support/failing_new.h"
#include "support/functions.h"

namespace {

using support::Function;

class Heap : public testing::TestWithParam<Function> {};

// Setters and scalar getters copy nothing, and a single string is handed out as it came
// with the reply.
TEST_P(Heap, SecondCall_AllocatesOnlyWhatIsHandedOut) {
  support::Device device;
  device.BuildClients();
  ScriptAlways(device, {GetParam()});
  support::CapturedStderr captured;
  ASSERT_TRUE(GetParam().plain_call());

  support::WatchAllocations({0, 0, false, true});
  const bool result = GetParam().plain_call();
  const std::size_t own = support::AllocationsSeen();

  EXPECT_TRUE(result);
  EXPECT_EQ(own, GetParam().heap_copies);
}

INSTANTIATE_TEST_SUITE_P(All, Heap, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
