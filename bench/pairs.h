// Two ways to do the same, timed by turns in one loop: what disturbs the machine
// disturbs both, so that their ratio says more than either time.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <vector>

namespace bench {

double Median(std::vector<double> values);
/// The value that this share of them does not exceed.
double Quantile(std::vector<double> values, double share);

/// The median of the ratios of pairs, with the bounds that hold it 95 times of 100. A
/// pair's two times share what the machine does just then; medians of all the one and
/// of all the other would not.
struct Ratio {
  double middle;
  double low;
  double high;
};
Ratio MedianOfRatios(const std::vector<double>& of, const std::vector<double>& to);

/// Something to time; gives whether it worked.
using Attempt = std::function<bool()>;

/// Runs both by turns, each first every other time, for as long as the benchmark
/// lasts. Its counters are library_us, stub_us, ratio, ratio_low and ratio_high.
void Compare(benchmark::State& state, const Attempt& library, const Attempt& stub);

/// The same for what measures itself: each gives its seconds, negative on failure.
using Measure = std::function<double()>;
void CompareMeasured(benchmark::State& state, const Measure& library, const Measure& stub);

}  // namespace bench
