// The fault matrix: rows are faults, columns are all functions of the library.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/faults/tally.h"

namespace faults {

struct Row {
  std::string name;
  std::function<Tally()> run;
  /// Takes too long for every run of the tests: only with NETWORKGRPC_FULL=1.
  bool full_only = false;
};

inline std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

/// Daemons that answer, but not as they should.
std::vector<Row> ReplyRows();
/// Daemons that are away, die, hang or are someone else.
std::vector<Row> ConnectionRows();

}  // namespace faults
