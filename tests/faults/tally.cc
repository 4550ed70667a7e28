#include "tests/faults/tally.h"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace faults {

using support::Outcome;

void Tally::Count(const std::string& which, const Outcome& seen, const Outcome& expected) {
  std::ostringstream difference;
  difference << "seen " << seen << "\nexpected " << expected;
  // A text of megabytes tells nobody anything.
  Count(which, seen == expected, difference.str().substr(0, 4000));
}

void Tally::Count(const std::string& which, bool ok, const std::string& otherwise) {
  ++cases;
  as_expected += ok ? 1 : 0;
  if (!ok) failures += which + ": " + otherwise + "\n";
}

Outcome Tally::Own(Outcome seen) {
  Lines lines = Separate(seen.printed);
  grpc_lines += lines.grpc;
  protobuf_lines += lines.protobuf;
  seen.printed = std::move(lines.own);
  return seen;
}

void Tally::Add(const Tally& other) {
  cases += other.cases;
  as_expected += other.as_expected;
  grpc_lines += other.grpc_lines;
  protobuf_lines += other.protobuf_lines;
  slowest_ms = std::max(slowest_ms, other.slowest_ms);
  recovery_ms = std::max(recovery_ms, other.recovery_ms);
  failures += other.failures;
}

std::string Tally::ToText() const {
  std::ostringstream text;
  text << cases << ' ' << as_expected << ' ' << grpc_lines << ' ' << protobuf_lines << ' '
       << slowest_ms << ' ' << recovery_ms << '\n'
       << failures;
  return text.str();
}

Tally Tally::FromText(const std::string& text) {
  Tally tally;
  std::istringstream in(text);
  in >> tally.cases >> tally.as_expected >> tally.grpc_lines >> tally.protobuf_lines >>
      tally.slowest_ms >> tally.recovery_ms;
  in.ignore();
  tally.failures.assign(std::istreambuf_iterator<char>(in), {});
  return tally;
}

Outcome TimedCall(const support::Function& function, Tally& tally) {
  const auto start = std::chrono::steady_clock::now();
  Outcome seen = support::Call(function);
  const auto took = std::chrono::steady_clock::now() - start;
  tally.slowest_ms = std::max<long long>(
      tally.slowest_ms, std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
  return tally.Own(std::move(seen));
}

}  // namespace faults
