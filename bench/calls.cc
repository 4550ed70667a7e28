// Every function of the library by turns with the same calls through the stubs,
// against the daemons that the environment names.
#include <stdexcept>

#include "bench/pairs.h"
#include "bench/stub_calls.h"
#include "tests/footprint/plain_calls.h"

namespace {

footprint::PlainCall PlainCall(const std::string& name) {
  for (const auto& call : footprint::PlainCalls())
    if (call.name == name) return call;
  throw std::runtime_error("no plain call is called " + name);
}

void Register(const std::string& title, const std::string& function, const bench::Attempt& stub) {
  const auto library = PlainCall(function).call;
  benchmark::RegisterBenchmark(
      title.c_str(), [=](benchmark::State& state) { bench::Compare(state, library, stub); })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

bool RegisterAll() {
  for (const auto& function : support::AllFunctions()) {
    const bench::Attempt stub = bench::StubCalls(function);
    if (stub == nullptr) continue;  // asks no daemon: nothing to compare it with
    Register(function.name, function.name, stub);
    if (function.name == "GetAllIPv4")
      Register("GetAllIPv4, stub copying too", function.name, bench::AllInterfacesByHand());
  }
  return true;
}

const bool registered = RegisterAll();

}  // namespace
