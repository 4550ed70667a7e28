#include "examples/table.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

class Table : public testing::Test {
 protected:
  Table() { demo::UseUtf8(); }
};

TEST_F(Table, Width_TextsOfSeveralScripts_CountsColumns) {
  EXPECT_EQ(demo::Width(""), 0);
  EXPECT_EQ(demo::Width("lan0"), 4);
  EXPECT_EQ(demo::Width("Bühne"), 5);
  EXPECT_EQ(demo::Width("u\u0308"), 1);  // a combining diaeresis
  EXPECT_EQ(demo::Width("主輸出"), 6);
}

TEST_F(Table, Printable_ControlCharactersAndBrokenUtf8_BecomeQuestionMarks) {
  EXPECT_EQ(demo::Printable("a\nb\x1b[2J"), "a?b?[2J");
  EXPECT_EQ(demo::Printable(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(demo::Printable("\xff\xc3"), "??");
  EXPECT_EQ(demo::Printable("主 Bühne"), "主 Bühne");
}

TEST_F(Table, Print_NarrowAndWideCells_LineUpAndLeaveNoBlanksAtTheEnd) {
  demo::Table table({"Id", "Name", "From"});
  table.Add({"1", "主輸出", "x"});
  table.Add({"10", "Bühne links", "y"});

  std::ostringstream out;
  out << table;

  EXPECT_EQ(out.str(),
            "  Id  Name         From\n"
            "  1   主輸出       x\n"
            "  10  Bühne links  y\n");
}

TEST_F(Table, Print_NoHeadings_PrintsTheRowsOnly) {
  demo::Table table;
  EXPECT_TRUE(table.IsEmpty());
  table.Add({"Host name", "amplifier"});
  table.Add({"DNS", "-"});

  std::ostringstream out;
  out << table;

  EXPECT_FALSE(table.IsEmpty());
  EXPECT_EQ(out.str(),
            "  Host name  amplifier\n"
            "  DNS        -\n");
}

}  // namespace
