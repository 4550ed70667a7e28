// Many callers at once, alternately through the library and through one stub: a round
// of all callers on the one, then a round on the other.
#include <condition_variable>
#include <mutex>
#include <thread>

#include <chrono>

#include "DantegRPC.h"
#include "bench/pairs.h"
#include "bench/stub_calls.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration taken) { return std::chrono::duration<double>(taken).count(); }

bool ThroughLibrary() {
  std::string name;
  return DantegRPC::GetName(name);
}

// Threads that wait for a round, make their calls and wait for the next.
class Callers {
 public:
  Callers(int count, int calls_each) : calls(calls_each), times(static_cast<std::size_t>(count)) {
    for (auto& own : times) threads.emplace_back([this, &own] { Serve(own); });
  }

  ~Callers() {
    Begin(nullptr);
    for (std::thread& thread : threads) thread.join();
  }

  Callers(const Callers&) = delete;
  Callers& operator=(const Callers&) = delete;

  /// Seconds that a round took; negative when a call failed. Appends those of each call.
  double Round(const bench::Attempt& call, std::vector<double>& each) {
    const auto begin = Clock::now();
    Begin(&call);
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return busy == 0; });
    const double taken = Seconds(Clock::now() - begin);
    for (const auto& own : times) each.insert(each.end(), own.begin(), own.end());
    return worked ? taken : -1;
  }

 private:
  void Begin(const bench::Attempt* call) {
    const std::lock_guard<std::mutex> lock(mutex);
    current = call;
    busy = threads.size();
    ++round;
    changed.notify_all();
  }

  void Serve(std::vector<double>& own) {
    for (unsigned served = 0;; ++served) {
      const bench::Attempt* call = nullptr;
      {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return round != served; });
        call = current;
      }
      if (call == nullptr) return;
      own.clear();
      bool all_worked = true;
      for (int i = 0; i < calls; ++i) {
        const auto begin = Clock::now();
        all_worked = (*call)() && all_worked;
        own.push_back(Seconds(Clock::now() - begin));
      }
      const std::lock_guard<std::mutex> lock(mutex);
      worked = worked && all_worked;
      if (--busy == 0) changed.notify_all();
    }
  }

  const int calls;
  std::mutex mutex;
  std::condition_variable changed;
  const bench::Attempt* current = nullptr;
  std::size_t busy = 0;
  unsigned round = 0;
  bool worked = true;
  std::vector<std::vector<double>> times;
  std::vector<std::thread> threads;
};

void Threads(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const int calls = std::max(10, 320 / count);
  Callers callers(count, calls);
  const bench::Attempt library = &ThroughLibrary;
  const bench::Attempt stub = bench::StubCalls(support::FunctionNamed("GetName"));
  std::vector<double> library_each;
  std::vector<double> stub_each;
  bench::CompareMeasured(
      state, [&] { return callers.Round(library, library_each); },
      [&] { return callers.Round(stub, stub_each); });

  const double made = count * calls * 1e6;
  state.counters["library_per_s"] = made / state.counters["library_us"];
  state.counters["stub_per_s"] = made / state.counters["stub_us"];
  state.counters["library_p99_us"] = bench::Quantile(library_each, 0.99) * 1e6;
  state.counters["stub_p99_us"] = bench::Quantile(stub_each, 0.99) * 1e6;
}
BENCHMARK(Threads)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Arg(16)->Arg(64)->UseManualTime()->Unit(
    benchmark::kMillisecond);

}  // namespace
