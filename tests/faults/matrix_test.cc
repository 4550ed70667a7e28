// Every function of the library under every fault: its result, its outputs, the
// lines that it prints, and that it works again when the fault is over. Each row
// prints how many cases it had and what it counted.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>

#include "tests/faults/row.h"

namespace {

using faults::Row;
using faults::Tally;

std::vector<Row> Rows(bool full_only) {
  std::vector<Row> rows = faults::ReplyRows();
  std::vector<Row> more = faults::ConnectionRows();
  rows.insert(rows.end(), std::make_move_iterator(more.begin()),
              std::make_move_iterator(more.end()));
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [&](const Row& row) { return row.full_only != full_only; }),
             rows.end());
  return rows;
}

bool Full() {
  const char* const full = std::getenv("NETWORKGRPC_FULL");
  return full != nullptr && std::string(full) == "1";
}

class FaultMatrix : public testing::TestWithParam<Row> {};

TEST_P(FaultMatrix, EveryFunctionCopes) {
  if (GetParam().full_only && !Full()) GTEST_SKIP() << "only with NETWORKGRPC_FULL=1";

  const Tally tally = GetParam().run();

  std::printf(
      "fault matrix: %-28s %5d cases, %5d as expected; slowest call %6lld ms; "
      "works again after %5lld ms; %d gRPC and %d protobuf lines\n",
      GetParam().name.c_str(), tally.cases, tally.as_expected, tally.slowest_ms, tally.recovery_ms,
      tally.grpc_lines, tally.protobuf_lines);
  EXPECT_GT(tally.cases, 0);
  EXPECT_EQ(tally.as_expected, tally.cases) << tally.failures;
}

INSTANTIATE_TEST_SUITE_P(Library, FaultMatrix, testing::ValuesIn(Rows(false)),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Full, FaultMatrix, testing::ValuesIn(Rows(true)),
                         [](const auto& test) { return test.param.name; });

}  // namespace
