// The library's own work on long lists, without a daemon: the time per interface and how
// it grows with their number.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "network/conversions.h"

namespace {

struct Lists {
  explicit Lists(int count) {
    for (int id = 1; id <= count; ++id) {
      auto& interface = *known.add_interfaces();
      interface.set_id(id);
      interface.set_name("lan" + std::to_string(id));
      interface.set_mac("02:00:00:00:00:10");
      Describe(id, *config.add_configs());
      Describe(id, *status.add_status());
    }
  }

  ostrevan::networkmanager::Interfaces known;
  ostrevan::networkmanager::InterfacesConfig config;
  ostrevan::networkmanager::InterfacesStatus status;

 private:
  template <class Message>
  static void Describe(int id, Message& described) {
    described.set_id(id);
    described.set_ip("192.168.100.101");
    described.set_netmask("255.255.255.0");
  }
};

// Lists of `count` interfaces, used one after the other, in as much memory for every
// count: else few interfaces would stay in the nearest cache, and its size would be measured.
class RotatingLists {
 public:
  explicit RotatingLists(int count) {
    for (int made = 0; made < kInterfaces; made += count) all.emplace_back(count);
  }

  const Lists& Next() {
    turn = (turn + 1) % all.size();
    return all[turn];
  }

 private:
  static constexpr int kInterfaces = 10000;  // the most that a benchmark uses
  std::vector<Lists> all;
  std::size_t turn = 0;
};

void ReportTimeOfEach(benchmark::State& state) {
  state.counters["each_s"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// GetAllIPv4: what is appended is freed again, as an application does.
void AppendInterfaces(benchmark::State& state) {
  RotatingLists rotating(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    const Lists& lists = rotating.Next();
    std::vector<NetworkgRPC::InterfaceInfo> out;
    network::AppendInterfaces(lists.known, lists.config, lists.status, out);
    benchmark::DoNotOptimize(out.data());
  }
  ReportTimeOfEach(state);
}
BENCHMARK(AppendInterfaces)->RangeMultiplier(10)->Range(10, 10000);

// GetDanteInterfacesInfo: the interface that is described last.
void fillInterfaceInfo(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  RotatingLists rotating(count);
  for ([[maybe_unused]] auto _ : state) {
    const Lists& lists = rotating.Next();
    NetworkgRPC::InterfaceInfo record;
    benchmark::DoNotOptimize(network::fillInterfaceInfo(count, record, lists.config, lists.status));
  }
  ReportTimeOfEach(state);
}
BENCHMARK(fillInterfaceInfo)->RangeMultiplier(10)->Range(10, 10000);

}  // namespace
