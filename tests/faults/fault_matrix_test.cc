// Every function of the library under every fault: its result, its outputs, the lines
// that it prints, and whether it works again after the fault. Each row prints its counts.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>

#include "tests/faults/fault_matrix.h"

namespace {

using faults::MatrixRow;
using faults::ResultCounts;

std::vector<MatrixRow> Rows(bool full_only) {
  std::vector<MatrixRow> rows = faults::ReplyFaults();
  for (std::vector<MatrixRow>& more : std::array{faults::ConnectionFaults(), faults::LinkFaults()})
    rows.insert(rows.end(), std::make_move_iterator(more.begin()),
                std::make_move_iterator(more.end()));
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [&](const MatrixRow& row) { return row.full_only != full_only; }),
             rows.end());
  return rows;
}

bool Full() {
  const char* const full = std::getenv("NETWORKGRPC_FULL");
  return full != nullptr && std::string(full) == "1";
}

class FaultMatrix : public testing::TestWithParam<MatrixRow> {};

TEST_P(FaultMatrix, EveryFunctionCopes) {
  if (GetParam().full_only && !Full()) GTEST_SKIP() << "only with NETWORKGRPC_FULL=1";

  const ResultCounts counts = GetParam().run();

  std::printf(
      "fault matrix: %-28s %5d cases, %5d as expected; slowest call %6lld ms; "
      "works again after %5lld ms; %d gRPC and %d protobuf lines\n",
      GetParam().name.c_str(), counts.cases, counts.as_expected, counts.slowest_ms,
      counts.recovery_ms, counts.grpc_lines, counts.protobuf_lines);
  EXPECT_GT(counts.cases, 0);
  EXPECT_EQ(counts.as_expected, counts.cases) << counts.failures;
}

INSTANTIATE_TEST_SUITE_P(Library, FaultMatrix, testing::ValuesIn(Rows(false)),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Full, FaultMatrix, testing::ValuesIn(Rows(true)),
                         [](const auto& test) { return test.param.name; });

}  // namespace
