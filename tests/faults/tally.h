// One row of the fault matrix: how many cases it had, and which of them did not
// come out as expected.
#pragma once

#include <string>

#include "tests/faults/lines.h"
#include "tests/support/outcome.h"

namespace faults {

class Tally {
 public:
  /// Counts a case, and as expected only when `seen` is what must be.
  void Count(const std::string& which, const support::Outcome& seen,
             const support::Outcome& expected);
  /// The same for what is no outcome.
  void Count(const std::string& which, bool ok, const std::string& otherwise);
  /// Takes the lines of the runtimes out of what a call printed, and counts them.
  support::Outcome Own(support::Outcome seen);
  /// Adds what another process counted.
  void Add(const Tally& other);

  std::string ToText() const;
  static Tally FromText(const std::string& text);

  int cases = 0;
  int as_expected = 0;
  int grpc_lines = 0;
  int protobuf_lines = 0;
  long long slowest_ms = 0;   // the longest single call
  long long recovery_ms = 0;  // the longest time from the end of a fault to a good call
  std::string failures = {};
};

/// Calls the function and keeps its time.
support::Outcome TimedCall(const support::Function& function, Tally& tally);

}  // namespace faults
