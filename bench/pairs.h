// Two ways to do the same, called alternately in one loop and timed: what disturbs the
// machine disturbs both, so that their ratio is more reliable than either time.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <vector>

namespace bench {

double Median(std::vector<double> values);
/// The value that this share of them does not exceed.
double Quantile(std::vector<double> values, double share);

/// The median of the ratios of pairs, and bounds that contain the true one in 95 of 100
/// cases. The two times of a pair share the momentary state of the machine; medians of all
/// times of each side would not.
struct Ratio {
  double middle;
  double low;
  double high;
};
Ratio MedianOfRatios(const std::vector<double>& of, const std::vector<double>& to);

/// Something to time; true when it worked.
using Attempt = std::function<bool()>;

/// Calls both alternately for as long as the benchmark lasts; the order is swapped every
/// iteration. Its counters are library_us, stub_us, ratio, ratio_low and ratio_high.
void Compare(benchmark::State& state, const Attempt& library, const Attempt& stub);

/// The same for what measures itself: each returns its seconds, negative on failure.
using Measure = std::function<double()>;
void CompareMeasured(benchmark::State& state, const Measure& library, const Measure& stub);

}  // namespace bench
