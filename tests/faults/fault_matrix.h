// The fault matrix: each row is a fault, each column a function of the library.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/faults/result_counts.h"

namespace faults {

struct MatrixRow {
  std::string name;
  std::function<ResultCounts()> run;
  /// Takes too long for every test run: runs only with NETWORKGRPC_FULL=1.
  bool full_only = false;
};

inline std::ostream& operator<<(std::ostream& out, const MatrixRow& row) { return out << row.name; }

/// Faults of the reply.
std::vector<MatrixRow> ReplyFaults();
/// Faults of the connection: the daemon is absent, killed, restarted, frozen or replaced.
std::vector<MatrixRow> ConnectionFaults();
/// Faults of the link: it is slow, or cut during a call.
std::vector<MatrixRow> LinkFaults();

}  // namespace faults
