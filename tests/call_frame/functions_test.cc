// Every function of the library against daemons that answer well, fail, reject the
// request or are absent: its result, its outputs, the RPCs that it makes, in order and
// byte for byte, and what it prints.
#include "support/functions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "support/captured_stderr.h"
#include "support/outcome.h"

namespace {

using support::Device;
using support::Expected;
using support::Function;
using support::Outcome;

Outcome Call(const Function& function, Device& device) {
  Outcome outcome = support::Call(function);
  outcome.requests = device.TakeRequests();
  return outcome;
}

void ScriptAllBut(Device& device, const Function& function, std::size_t failing,
                  const support::Answer& answer) {
  Function scripted = function;
  scripted.steps.erase(scripted.steps.begin() + static_cast<std::ptrdiff_t>(failing),
                       scripted.steps.end());
  ScriptOnce(device, scripted);
  const std::string& path = function.steps[failing].path;
  device.DaemonOf(path).ScriptNext(path, answer);
  if (!function.steps[failing].continues) return;
  scripted.steps.assign(function.steps.begin() + static_cast<std::ptrdiff_t>(failing) + 1,
                        function.steps.end());
  ScriptOnce(device, scripted);
}

class EveryFunction : public testing::TestWithParam<Function> {};

TEST_P(EveryFunction, DaemonsAnswerWell_ReturnsItsOutputsAndPrintsNothingElse) {
  Device device;
  device.BuildClients();
  ScriptOnce(device, GetParam());

  EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {}));
}

TEST_P(EveryFunction, OneCallFails_AnyStatusCode_PrintsTheLineOfThatCall) {
  Device device;
  device.BuildClients();
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) {
    for (int code = 1; code <= 16; ++code) {
      SCOPED_TRACE(testing::Message() << "call " << i << " with status " << code);
      ScriptAllBut(device, GetParam(), i, support::Failure(static_cast<grpc::StatusCode>(code)));

      EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {i}));
    }
  }
}

// A daemon may send a reply although it fails the call.
TEST_P(EveryFunction, OneCallFails_WithAGoodReply_PrintsTheLineOfThatCall) {
  Device device;
  device.BuildClients();
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "call " << i);
    const grpc::Status status(grpc::StatusCode::INTERNAL, "scripted");
    ScriptAllBut(device, GetParam(), i, {GetParam().steps[i].reply, status});

    EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {i}));
  }
}

TEST_P(EveryFunction, CallsFail_PrintsEachLineBeforeTheNextCall) {
  Device device;
  device.BuildClients();
  const support::CapturedStderr captured;
  // What has been printed when a call arrives.
  std::vector<std::string> printed;
  std::vector<std::string> expected;
  std::string so_far = GetParam().printed;
  bool continues = true;
  for (const support::Step& step : GetParam().steps) {
    device.DaemonOf(step.path).ScriptEach(step.path, [&](const std::string&) {
      printed.push_back(captured.Printed());
      return support::Failure(grpc::StatusCode::INTERNAL);
    });
    if (continues) expected.push_back(so_far);
    so_far += step.line;
    continues = continues && step.continues;
  }

  std::string outputs;
  GetParam().call(outputs);

  EXPECT_EQ(printed, expected);
}

TEST_P(EveryFunction, OneChangeIsRejected_PrintsTheLineOfThatCall) {
  Device device;
  device.BuildClients();
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) {
    if (!GetParam().steps[i].replies_success) continue;
    // The flag is absent, or present and false.
    for (const std::string& rejection : {std::string(), std::string("\x08\x00", 2)}) {
      SCOPED_TRACE(testing::Message() << "call " << i);
      ScriptAllBut(device, GetParam(), i, {rejection});

      EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {i}));
    }
  }
}

// A reply that cannot be parsed: field 1 has fewer bytes than its length says.
TEST_P(EveryFunction, OneReplyIsTruncated_CountsAsAFailedCall) {
  Device device;
  device.BuildClients();
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "call " << i);
    ScriptAllBut(device, GetParam(), i, {"\x0a\x05x"});

    EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {i}));
  }
}

TEST_P(EveryFunction, DaemonsStopAfterTheFirstUse_PrintsEveryLine) {
  Device device;
  device.BuildClients();
  device.StopNetworkManager();
  device.StopDapi();

  EXPECT_EQ(Call(GetParam(), device), support::ExpectedWithoutDaemon(GetParam()));
}

TEST_P(EveryFunction, DaemonsWereNeverThere_FailsWithoutRoles) {
  Device device;
  const support::ReservedPort nobody;
  setenv("network_manager_url", nobody.Url().c_str(), 1);
  setenv("grpc_dapi_url", nobody.Url().c_str(), 1);

  EXPECT_EQ(Call(GetParam(), device), support::ExpectedWithoutRoles(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Library, EveryFunction, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

TEST(Table, EveryFunction_StandsOnce) {
  std::set<std::string> names;
  for (const Function& function : support::AllFunctions()) names.insert(function.name);

  EXPECT_EQ(names.size(), support::AllFunctions().size());
}

}  // namespace
