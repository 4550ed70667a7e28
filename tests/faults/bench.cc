#include "tests/faults/bench.h"

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

Outcome Healthy(const Function& function) {
  Outcome expected = support::Expected(function, {});
  expected.requests.clear();
  return expected;
}

void LetPass(milliseconds time) { std::this_thread::sleep_for(time); }

Bench::Bench(const Function& tested, Start start) : function(tested) {
  const std::string url = "ipv4:127.0.0.1:" + std::to_string(port.Number());
  setenv("network_manager_url", url.c_str(), 1);
  setenv("grpc_dapi_url", url.c_str(), 1);
  if (start == Start::kConnected) daemon = std::make_unique<ChildDaemon>(port.Number());
  next = std::make_unique<ChildDaemon>(port.Number());
  if (start == Start::kConnected) Connect();
}

void Bench::Connect() {
  daemon->Serve();
  daemon->Answer({support::NetworkManagerPath("GetAvailableInterfaces"), ""}, Interfaces());
  NetworkManagerClient::GetInstance();
  DAPIClient::GetInstance();
  for (const Step& step : function.steps) daemon->Answer({step.path, step.request}, step.reply);
  Tally first;
  const Outcome seen = TimedCall(function, first);
  if (!(seen == Healthy(function))) {
    std::ostringstream text;
    text << function << " does not work at the beginning: " << seen;
    throw std::runtime_error(text.str());
  }
  daemon->ForgetRequests();
}

void Bench::StartDaemon() {
  daemon = std::move(next);
  daemon->Serve();
  for (const Step& step : function.steps) daemon->Answer({step.path, step.request}, step.reply);
}

bool Bench::Explains(const Outcome& seen) const {
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

void Bench::WaitUntilHealthy(Tally& tally) {
  const auto start = std::chrono::steady_clock::now();
  const auto end = start + std::chrono::seconds(90);
  const Outcome healthy = Healthy(function);
  Outcome seen;
  do {
    seen = TimedCall(function, tally);
    if (!Explains(seen)) break;
    if (seen == healthy) break;
    LetPass(milliseconds(20));
  } while (std::chrono::steady_clock::now() < end);
  const auto took = std::chrono::steady_clock::now() - start;
  tally.recovery_ms = std::max<long long>(tally.recovery_ms,
                                          std::chrono::duration_cast<milliseconds>(took).count());
  tally.Count(function.name + " after the fault", seen, healthy);
}

}  // namespace faults
