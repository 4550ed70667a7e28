#include "bench/pairs.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace bench {
namespace {

constexpr int kDraws = 200;
constexpr std::size_t kMostDrawn = 2000;  // of each, per draw
constexpr double kMicro = 1e6;

std::vector<double> Draw(const std::vector<double>& values, std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> any(0, values.size() - 1);
  std::vector<double> drawn(values.size());
  for (double& value : drawn) value = values[any(random)];
  return drawn;
}

// Of very many samples every so-manieth stands for all: the bounds get no narrower.
std::vector<double> Thinned(const std::vector<double>& values) {
  const std::size_t step = values.size() / kMostDrawn + 1;
  std::vector<double> thin;
  for (std::size_t i = 0; i < values.size(); i += step) thin.push_back(values[i]);
  return thin;
}

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

Ratio MedianRatio(const std::vector<double>& of, const std::vector<double>& to) {
  std::mt19937 random(1);  // the same samples give the same bounds
  const auto thin_of = Thinned(of);
  const auto thin_to = Thinned(to);
  std::vector<double> ratios;
  for (int i = 0; i < kDraws; ++i)
    ratios.push_back(Median(Draw(thin_of, random)) / Median(Draw(thin_to, random)));
  return {Median(of) / Median(to), Quantile(ratios, 0.025), Quantile(ratios, 0.975)};
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
  const Ratio ratio = MedianRatio(library_times, stub_times);
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
