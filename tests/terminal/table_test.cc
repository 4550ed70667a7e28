#include "terminal/table.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using Row = terminal::Table::Row;

struct Case {
  const char* name;
  Row headings;
  std::vector<Row> rows;
  const char* text;
};

void PrintTo(const Case& it, std::ostream* out) { *out << it.name; }

class Tables : public testing::TestWithParam<Case> {};

TEST_P(Tables, Given_IsPrinted_LinesUp) {
  terminal::Table table(GetParam().headings);
  for (const Row& row : GetParam().rows) table.Add(row);
  EXPECT_EQ(table.Text(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    , Tables,
    testing::Values(
        Case{"Nothing", {}, {}, ""}, Case{"HeadingsAlone", {"ID", "NAME"}, {}, "ID  NAME\n"},
        Case{"Headings", {"ID", "NAME"}, {{"1", "a"}, {"10", "b"}}, "ID  NAME\n1   a\n10  b\n"},
        Case{"NoHeadings",
             {},
             {{"ip", "10.0.0.1"}, {"netmask", "255.0.0.0"}},
             "ip       10.0.0.1\nnetmask  255.0.0.0\n"},
        Case{"EmptyCells",
             {"A", "B", "C"},
             {{"1", "", "3"}, {"1", "", ""}},
             "A  B  C\n1  -  3\n1  -  -\n"},
        Case{"EmptyCellsWithoutHeadings", {}, {{"a", "", "b"}, {"a", "c"}}, "a  -  b\na  c\n"},
        Case{"WideAndCombining",
             {},
             {{"\u97f3\u58f0", "x"}, {"Ku\u0308che", "x"}, {"abcde", "x"}},
             "\u97f3\u58f0   x\nKu\u0308che  x\nabcde  x\n"},
        Case{"ControlCharacters", {}, {{"a\nb", "x"}, {"abcd", "x"}}, "a\\nb  x\nabcd  x\n"}),
    [](const testing::TestParamInfo<Case>& it) { return std::string(it.param.name); });

}  // namespace
