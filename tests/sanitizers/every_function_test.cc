// Every function once, in one process.
#include <gtest/gtest.h>

#include "tests/support/captured_stderr.h"
#include "tests/support/functions.h"

namespace {

TEST(OneProcess, EveryFunctionOnce_GivesItsOutputs) {
  support::Device device;
  device.BuildClients();
  const auto functions = support::AllFunctions();
  ScriptForGood(device, functions);

  for (const support::Function& function : functions) {
    std::string outputs;
    support::CapturedStderr captured;
    EXPECT_EQ(function.call(outputs), function.done) << function.name;
    EXPECT_EQ(outputs, function.outputs) << function.name;
    EXPECT_EQ(captured.Take(), function.printed) << function.name;
  }
}

}  // namespace
