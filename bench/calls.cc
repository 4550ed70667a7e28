// Every function of the library alternately with the same calls through the stubs,
// against the daemons that the environment variables name.
#include "bench/pairs.h"
#include "bench/stub_calls.h"

namespace {

void Register(const std::string& title, bool (*library)(), const bench::Attempt& stub) {
  benchmark::RegisterBenchmark(
      title.c_str(), [=](benchmark::State& state) { bench::Compare(state, library, stub); })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

bool RegisterAll() {
  for (const support::Function& function : support::AllFunctions()) {
    const bench::Attempt stub = bench::StubCalls(function);
    if (stub == nullptr) continue;  // makes no call: nothing to compare it with
    Register(function.name, function.plain_call, stub);
    if (function.name == "GetAllIPv4")
      Register("GetAllIPv4, stub copying too", function.plain_call, bench::AllInterfacesByHand());
  }
  return true;
}

const bool registered = RegisterAll();

}  // namespace
