#include "support/outcome.h"

#include <map>

#include "support/captured_stderr.h"

namespace support {

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

Outcome Call(const Function& function) {
  Outcome outcome;
  CapturedStderr captured;
  outcome.done = function.call(outcome.outputs);
  outcome.printed = captured.Take();
  return outcome;
}

Outcome Expected(const Function& function, const std::set<std::size_t>& failing) {
  Outcome outcome{true, function.outputs, function.printed, {}};
  std::size_t failed = 0;
  for (std::size_t i = 0; i < function.steps.size(); ++i) {
    const Step& step = function.steps[i];
    outcome.requests.push_back({step.path, step.request});
    if (failing.count(i) == 0) continue;
    outcome.done = step.result && (failed == 0 || outcome.done);
    outcome.outputs = ++failed > 1 ? function.failed_outputs : step.outputs;
    outcome.printed += step.line;
    if (!step.continues) break;
  }
  return outcome;
}

Outcome ExpectedWithoutDaemon(const Function& function) {
  std::set<std::size_t> all;
  for (std::size_t i = 0; i < function.steps.size(); ++i) all.insert(i);
  Outcome expected = Expected(function, all);
  expected.requests.clear();
  if (!all.empty()) expected.outputs = function.failed_outputs;
  return expected;
}

Outcome ExpectedWithoutRoles(const Function& function) {
  // These make no RPC when their role is unresolved.
  static const std::map<std::string, std::string> needs_a_role = {
      {"GetControlInterfacesInfo", ""},
      {"cGetControlInterface", ""},
      {"SetDanteIP", ""},
      {"GetTarvoInterfaceName",
       "libNetworkgRPC: wrong interface ID while getting tarvo name: 12\n"}};
  Outcome expected = ExpectedWithoutDaemon(function);
  if (const auto found = needs_a_role.find(function.name); found != needs_a_role.end())
    expected = {false, function.failed_outputs, found->second, {}};
  return expected;
}

}  // namespace support
