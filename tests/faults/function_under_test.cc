#include "tests/faults/function_under_test.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"

namespace faults {

using std::chrono::milliseconds;
using support::Function;
using support::Outcome;
using support::Step;

namespace {

std::string Interfaces() {
  ostrevan::networkmanager::Interfaces list;
  const auto add = [&list](int id, const char* name, const char* mac) {
    auto& added = *list.add_interfaces();
    added.set_id(id);
    added.set_name(name);
    added.set_mac(mac);
  };
  add(support::kLan0, "lan0", support::kLan0Mac);
  add(support::kLan1, "lan1", support::kLan1Mac);
  add(support::kLan2, "lan2", support::kLan2Mac);
  return list.SerializeAsString();
}

}  // namespace

Outcome GoodOutcome(const Function& function) {
  Outcome expected = support::Expected(function, {});
  expected.requests.clear();
  return expected;
}

void Pause(milliseconds time) { std::this_thread::sleep_for(time); }

FunctionUnderTest::FunctionUnderTest(const Function& tested, Start start) : function(tested) {
  const std::string url = "ipv4:127.0.0.1:" + std::to_string(port.Number());
  setenv("network_manager_url", url.c_str(), 1);
  setenv("grpc_dapi_url", url.c_str(), 1);
  if (start == Start::kConnected) daemon = std::make_unique<ChildDaemon>(port.Number());
  next = std::make_unique<ChildDaemon>(port.Number());
  if (start == Start::kConnected) Connect();
}

void FunctionUnderTest::Connect() {
  daemon->Serve();
  daemon->Answer({support::NetworkManagerPath("GetAvailableInterfaces"), ""}, Interfaces());
  NetworkManagerClient::GetInstance();
  DAPIClient::GetInstance();
  for (const Step& step : function.steps) daemon->Answer({step.path, step.request}, step.reply);
  ResultCounts first;
  const Outcome seen = TimedCall(function, first);
  if (!(seen == GoodOutcome(function))) {
    std::ostringstream text;
    text << function << " does not work before the fault: " << seen;
    throw std::runtime_error(text.str());
  }
  daemon->ForgetRequests();
}

void FunctionUnderTest::StartDaemon() {
  daemon = std::move(next);
  daemon->Serve();
  for (const Step& step : function.steps) daemon->Answer({step.path, step.request}, step.reply);
}

bool IsPossible(const Function& function, const Outcome& seen) {
  for (std::size_t set = 0; set < (std::size_t{1} << function.steps.size()); ++set) {
    std::set<std::size_t> failing;
    for (std::size_t i = 0; i < function.steps.size(); ++i)
      if ((set >> i & 1U) != 0) failing.insert(i);
    Outcome expected = support::Expected(function, failing);
    expected.requests.clear();
    if (seen == expected) return true;
  }
  return false;
}

void WaitUntilItWorks(const Function& function, ResultCounts& counts) {
  const auto start = std::chrono::steady_clock::now();
  const auto end = start + std::chrono::seconds(90);
  const Outcome healthy = GoodOutcome(function);
  Outcome seen;
  do {
    seen = TimedCall(function, counts);
    if (!IsPossible(function, seen)) break;
    if (seen == healthy) break;
    Pause(milliseconds(20));
  } while (std::chrono::steady_clock::now() < end);
  const auto took = std::chrono::steady_clock::now() - start;
  counts.recovery_ms = std::max<long long>(counts.recovery_ms,
                                           std::chrono::duration_cast<milliseconds>(took).count());
  counts.Count(function.name + " after the fault", seen, healthy);
}

}  // namespace faults
