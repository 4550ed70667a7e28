// What a user would pick instead, in one loop with the library: one name asked for
// some times by each in turn.
#include <chrono>
#include <string>

#include "DantegRPC.h"
#include "bench/pairs.h"
#include "bench/stub_calls.h"
#include "bench/tcp_echo.h"
#ifdef NETWORKGRPC_BENCH_SD_BUS
#include "bench/bus.h"
#endif

namespace {

struct Neighbour {
  const char* name;
  bench::Attempt ask;
  std::vector<double> seconds = {};
};

bench::Attempt Stub() {
  for (const auto& function : support::DanteFunctions())
    if (function.name == "GetName") return bench::StubCalls(function);
  return {};
}

// So that each finds its own things in the caches, as the clients in other languages
// do, which are measured by themselves.
constexpr int kCallsInARow = 20;

bool TimeCalls(Neighbour& neighbour) {
  bool worked = neighbour.ask();
  for (int i = 0; i < kCallsInARow; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    worked = neighbour.ask() && worked;
    neighbour.seconds.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  return worked;
}

void Ask(benchmark::State& state, std::vector<Neighbour>& neighbours) {
  for (Neighbour& neighbour : neighbours) neighbour.seconds.clear();
  std::size_t turn = 0;
  for ([[maybe_unused]] auto _ : state) {
    ++turn;
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      if (TimeCalls(neighbours[(turn + i) % neighbours.size()])) continue;
      state.SkipWithError("a call failed");
      return;
    }
  }
  for (const Neighbour& neighbour : neighbours)
    state.counters[neighbour.name] = bench::Median(neighbour.seconds) * 1e6;
}

// The companions fork, hence come before the first call makes gRPC start threads.
std::vector<Neighbour> MakeNeighbours() {
  static const bench::TcpEcho echo;
  std::vector<Neighbour> all = {{"tcp_us", [] { return echo.Ask(); }}};
#ifdef NETWORKGRPC_BENCH_SD_BUS
  static bench::Bus bus;
  all.push_back({"sd_bus_us", [] {
                   std::string name;
                   return bus.Ask(name);
                 }});
#endif
  all.push_back({"library_us", [] {
                   std::string name;
                   return DantegRPC::GetName(name);
                 }});
  all.push_back({"stub_us", Stub()});
  return all;
}

void Neighbours(benchmark::State& state) {
  static std::vector<Neighbour> all = MakeNeighbours();
  Ask(state, all);
}
BENCHMARK(Neighbours);

}  // namespace
