#include "tests/faults/result_counts.h"

#include <algorithm>
#include <chrono>
#include <sstream>

#include "tests/faults/stderr_lines.h"

namespace faults {

using support::Outcome;

void ResultCounts::Count(const std::string& name, const Outcome& seen, const Outcome& expected) {
  std::ostringstream difference;
  difference << "seen " << seen << "\nexpected " << expected;
  // Outcomes can be megabytes long.
  Count(name, seen == expected, difference.str().substr(0, 4000));
}

void ResultCounts::Count(const std::string& name, bool ok, const std::string& failure) {
  ++cases;
  as_expected += ok ? 1 : 0;
  if (!ok) failures += name + ": " + failure + "\n";
}

void ResultCounts::Add(const ResultCounts& other) {
  cases += other.cases;
  as_expected += other.as_expected;
  grpc_lines += other.grpc_lines;
  protobuf_lines += other.protobuf_lines;
  slowest_ms = std::max(slowest_ms, other.slowest_ms);
  recovery_ms = std::max(recovery_ms, other.recovery_ms);
  failures += other.failures;
}

std::string ResultCounts::ToString() const {
  std::ostringstream text;
  text << cases << ' ' << as_expected << ' ' << grpc_lines << ' ' << protobuf_lines << ' '
       << slowest_ms << ' ' << recovery_ms << '\n'
       << failures;
  return text.str();
}

ResultCounts ResultCounts::FromString(const std::string& text) {
  ResultCounts counts;
  std::istringstream in(text);
  in >> counts.cases >> counts.as_expected >> counts.grpc_lines >> counts.protobuf_lines >>
      counts.slowest_ms >> counts.recovery_ms;
  in.ignore();
  counts.failures.assign(std::istreambuf_iterator<char>(in), {});
  return counts;
}

Outcome TimedCall(const support::Function& function, ResultCounts& counts) {
  const auto start = std::chrono::steady_clock::now();
  Outcome seen = support::Call(function);
  const auto took = std::chrono::steady_clock::now() - start;
  counts.slowest_ms = std::max<long long>(
      counts.slowest_ms, std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
  StderrLines lines = SplitStderr(seen.printed);
  counts.grpc_lines += lines.grpc;
  counts.protobuf_lines += lines.protobuf;
  seen.printed = std::move(lines.library);
  return seen;
}

}  // namespace faults
