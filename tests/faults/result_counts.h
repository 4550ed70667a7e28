// What a row of the fault matrix found: the number of cases, and each case with an
// unexpected result.
#pragma once

#include <string>

#include "support/outcome.h"

namespace faults {

class ResultCounts {
 public:
  /// Counts a case; it is as expected if `seen` equals `expected`.
  void Count(const std::string& name, const support::Outcome& seen,
             const support::Outcome& expected);
  /// Counts a case; it is as expected if `ok`, otherwise `failure` says what happened.
  void Count(const std::string& name, bool ok, const std::string& failure);
  /// Adds the counts of another process.
  void Add(const ResultCounts& other);

  std::string ToString() const;
  static ResultCounts FromString(const std::string& text);

  int cases = 0;
  int as_expected = 0;
  int grpc_lines = 0;
  int protobuf_lines = 0;
  long long slowest_ms = 0;   // the longest single call
  long long recovery_ms = 0;  // the longest time from the end of a fault to a good call
  std::string failures = {};
};

/// Calls the function. Its time and the lines of gRPC and protobuf go to `counts`; the
/// outcome has the library's lines only.
support::Outcome TimedCall(const support::Function& function, ResultCounts& counts);

}  // namespace faults
