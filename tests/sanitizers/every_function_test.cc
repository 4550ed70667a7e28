// Every function once, in one process.
#include <gtest/gtest.h>

#include "support/captured_stderr.h"
#include "support/functions.h"

namespace {

TEST(OneProcess, EveryFunctionOnce_ReturnsItsOutputs) {
  support::Device device;
  device.BuildClients();
  const auto functions = support::AllFunctions();
  ScriptAlways(device, functions);

  for (const support::Function& function : functions) {
    std::string outputs;
    support::CapturedStderr captured;
    EXPECT_TRUE(function.call(outputs)) << function.name;
    EXPECT_EQ(outputs, function.outputs) << function.name;
    EXPECT_EQ(captured.Take(), function.printed) << function.name;
  }
}

}  // namespace
