// Every function of the library against daemons that answer well, fail, refuse
// or are away: its result, its outputs, the calls that it makes, in order and
// byte for byte, and what it prints.
#include "support/functions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "support/captured_stderr.h"

namespace {

using support::Device;
using support::Function;
using support::Request;
using support::Step;

struct Outcome {
  bool done;
  std::string outputs;
  std::string printed;
  std::vector<Request> requests;
};

bool operator==(const Outcome& a, const Outcome& b) {
  return a.done == b.done && a.outputs == b.outputs && a.printed == b.printed &&
         a.requests == b.requests;
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  out << (outcome.done ? "true" : "false") << "\n  outputs: " << outcome.outputs
      << "\n  printed: " << outcome.printed << "\n  requests:";
  for (const Request& request : outcome.requests) out << "\n    " << request;
  return out;
}

Outcome Call(const Function& function, Device& device) {
  Outcome outcome;
  support::CapturedStderr captured;
  outcome.done = function.call(outcome.outputs);
  outcome.printed = captured.Take();
  outcome.requests = device.TakeRequests();
  return outcome;
}

// What must come of a function when these of its steps fail.
Outcome Expected(const Function& function, const std::set<std::size_t>& failing) {
  Outcome outcome{function.done, function.outputs, function.printed, {}};
  std::size_t failed = 0;
  for (std::size_t i = 0; i < function.steps.size(); ++i) {
    const Step& step = function.steps[i];
    outcome.requests.push_back({step.path, step.request});
    if (failing.count(i) == 0) continue;
    outcome.done = step.result && (failed == 0 || outcome.done);
    outcome.outputs = ++failed > 1 ? function.failed_outputs : step.outputs;
    outcome.printed += step.line;
    if (!step.goes_on) break;
  }
  return outcome;
}

void ScriptAllBut(Device& device, const Function& function, std::size_t failing,
                  const support::Answer& answer) {
  Function scripted = function;
  scripted.steps.erase(scripted.steps.begin() + static_cast<std::ptrdiff_t>(failing),
                       scripted.steps.end());
  ScriptSuccess(device, scripted);
  const bool network = function.steps[failing].path.rfind(support::NetworkManagerPath(""), 0) == 0;
  (network ? device.network_manager : device.dapi)
      ->ScriptNext(function.steps[failing].path, answer);
  if (!function.steps[failing].goes_on) return;
  scripted.steps.assign(function.steps.begin() + static_cast<std::ptrdiff_t>(failing) + 1,
                        function.steps.end());
  ScriptSuccess(device, scripted);
}

class EveryFunction : public testing::TestWithParam<Function> {};

TEST_P(EveryFunction, DaemonsAnswerWell_GivesItsOutputsAndPrintsNothingElse) {
  Device device;
  device.BuildClients();
  ScriptSuccess(device, GetParam());

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

TEST_P(EveryFunction, OneChangeIsRefused_PrintsTheLineOfThatCall) {
  Device device;
  device.BuildClients();
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) {
    if (!GetParam().steps[i].confirms) continue;
    // The flag left out, and the flag written as false.
    for (const std::string& refusal : {std::string(), std::string("\x08\x00", 2)}) {
      SCOPED_TRACE(testing::Message() << "call " << i);
      ScriptAllBut(device, GetParam(), i, {refusal});

      EXPECT_EQ(Call(GetParam(), device), Expected(GetParam(), {i}));
    }
  }
}

// A reply that cannot be parsed: field 1 announces more bytes than there are.
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
  std::set<std::size_t> all;
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) all.insert(i);
  Outcome expected = Expected(GetParam(), all);
  expected.requests.clear();
  if (!all.empty()) expected.outputs = GetParam().failed_outputs;

  EXPECT_EQ(Call(GetParam(), device), expected);
}

TEST_P(EveryFunction, DaemonsWereNeverThere_FailsWithoutRoles) {
  Device device;
  const support::RefusedPort nobody;
  setenv("network_manager_url", nobody.Url().c_str(), 1);
  setenv("grpc_dapi_url", nobody.Url().c_str(), 1);
  std::set<std::size_t> all;
  for (std::size_t i = 0; i < GetParam().steps.size(); ++i) all.insert(i);
  Outcome expected = Expected(GetParam(), all);
  expected.requests.clear();
  expected.outputs = GetParam().failed_outputs;
  // Without the daemon at the first use no role is known, so these ask nobody.
  const std::map<std::string, std::string> needs_a_role = {
      {"GetControlInterfacesInfo", ""},
      {"cGetControlInterface", ""},
      {"SetDanteIP", ""},
      {"GetTarvoInterfaceName",
       "libNetworkgRPC: wrong interface ID while getting tarvo name: 12\n"}};
  if (const auto found = needs_a_role.find(GetParam().name); found != needs_a_role.end()) {
    expected.done = false;
    expected.printed = found->second;
  }

  EXPECT_EQ(Call(GetParam(), device), expected);
}

INSTANTIATE_TEST_SUITE_P(Library, EveryFunction, testing::ValuesIn(support::AllFunctions()),
                         [](const auto& test) { return test.param.name; });

TEST(Table, HoldsEveryFunctionOnce) {
  std::set<std::string> names;
  for (const Function& function : support::AllFunctions()) names.insert(function.name);

  EXPECT_EQ(support::NetworkFunctions().size(), 19U + 3U);
  EXPECT_EQ(support::DanteFunctions().size(), 25U);
  EXPECT_EQ(names.size(), 19U + 3U + 25U);
}

}  // namespace
