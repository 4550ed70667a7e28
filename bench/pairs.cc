#include "bench/pairs.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>

namespace bench {
namespace {

constexpr double kMicro = 1e6;

Measure Timed(const Attempt& attempt) {
  return [&attempt] {
    const auto begin = std::chrono::steady_clock::now();
    const bool worked = attempt();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return worked ? taken.count() : -1;
  };
}

}  // namespace

double Quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + at, values.end());
  return values[static_cast<std::size_t>(at)];
}

double Median(std::vector<double> values) { return Quantile(std::move(values), 0.5); }

// How many samples lie below the true median is chance, as with a coin: 95 times of 100 it
// lies within this share of the sorted samples around the middle.
Ratio MedianOfRatios(const std::vector<double>& of, const std::vector<double>& to) {
  std::vector<double> ratios(of.size());
  std::transform(of.begin(), of.end(), to.begin(), ratios.begin(), std::divides<>());
  const double reach = 0.98 / std::sqrt(static_cast<double>(ratios.size()));
  return {Median(ratios), Quantile(ratios, std::max(0.0, 0.5 - reach)),
          Quantile(ratios, std::min(1.0, 0.5 + reach))};
}

void CompareMeasured(benchmark::State& state, const Measure& library, const Measure& stub) {
  std::vector<double> library_times;
  std::vector<double> stub_times;
  bool library_first = false;
  // The first call of each connects.
  library();
  stub();
  for ([[maybe_unused]] auto _ : state) {
    library_first = !library_first;
    if (library_first) library_times.push_back(library());
    stub_times.push_back(stub());
    if (!library_first) library_times.push_back(library());
    if (library_times.back() < 0 || stub_times.back() < 0) {
      state.SkipWithError("a call failed");
      return;
    }
    state.SetIterationTime(library_times.back());
  }
  const Ratio ratio = MedianOfRatios(library_times, stub_times);
  state.counters["library_us"] = Median(library_times) * kMicro;
  state.counters["stub_us"] = Median(stub_times) * kMicro;
  state.counters["ratio"] = ratio.middle;
  state.counters["ratio_low"] = ratio.low;
  state.counters["ratio_high"] = ratio.high;
}

void Compare(benchmark::State& state, const Attempt& library, const Attempt& stub) {
  CompareMeasured(state, Timed(library), Timed(stub));
}

}  // namespace bench
