// The device name read with the library, with its generated stub and with what a user
// might use instead, alternately in one loop.
#include <chrono>
#include <string>

#include "DantegRPC.h"
#include "bench/pairs.h"
#include "bench/peers/tcp_echo.h"
#include "bench/stub_calls.h"
#ifdef NETWORKGRPC_BENCH_DBUS
#include "bench/peers/dbus.h"
#endif

namespace {

struct Peer {
  const char* name;
  bench::Attempt read;
  std::vector<double> seconds = {};
};

// So that each finds its code and data in the caches, like the clients in other languages,
// which are measured alone.
constexpr int kCallsInARow = 20;

bool TimeCalls(Peer& peer) {
  bool worked = peer.read();
  for (int i = 0; i < kCallsInARow; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    worked = peer.read() && worked;
    peer.seconds.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  }
  return worked;
}

// The servers fork, hence are started before the first call makes gRPC start threads.
std::vector<Peer> MakePeers() {
  static const bench::TcpEcho echo;
  std::vector<Peer> all = {{"tcp_us", [] { return echo.Exchange(); }}};
#ifdef NETWORKGRPC_BENCH_DBUS
  static bench::DBus bus;
  all.push_back({"dbus_us", [] {
                   std::string name;
                   return bus.ReadName(name);
                 }});
#endif
  const support::Function get_name = support::FunctionNamed("GetName");
  all.push_back({"library_us", get_name.plain_call});
  all.push_back({"stub_us", bench::StubCalls(get_name)});
  return all;
}

void Peers(benchmark::State& state) {
  static std::vector<Peer> peers = MakePeers();
  for (Peer& peer : peers) peer.seconds.clear();
  std::size_t first = 0;
  for ([[maybe_unused]] auto _ : state) {
    ++first;
    for (std::size_t i = 0; i < peers.size(); ++i) {
      if (TimeCalls(peers[(first + i) % peers.size()])) continue;
      state.SkipWithError("a call failed");
      return;
    }
  }
  for (const Peer& peer : peers) state.counters[peer.name] = bench::Median(peer.seconds) * 1e6;
}
BENCHMARK(Peers);

}  // namespace
