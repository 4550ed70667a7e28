#include "terminal/arguments.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Case {
  const char* name;
  CLI::Validator check;
  std::vector<std::string> good;
  std::vector<std::string> bad;
  const char* message;  // for the first bad one
};

void PrintTo(const Case& it, std::ostream* out) { *out << it.name; }

class Checks : public testing::TestWithParam<Case> {};

TEST_P(Checks, Word_IsChecked_AcceptedOrNamedWithTheRule) {
  CLI::Validator check = GetParam().check;
  for (std::string word : GetParam().good) EXPECT_EQ(check(word), "") << word;
  for (std::string word : GetParam().bad) EXPECT_NE(check(word), "") << word;
  std::string first = GetParam().bad.front();
  EXPECT_EQ(check(first), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    , Checks,
    testing::Values(Case{"Port",
                         terminal::Integer(0, 65535),
                         {"0", "65535", "010"},
                         {"65536", "-1", "", "abc", "1.5", "1e3", "5x", "+5", " 5", "0x10",
                          "99999999999999999999"},
                         "'65536' must be an integer from 0 to 65535"},
                    Case{"AtLeastOne",
                         terminal::Integer(1, 64),
                         {"1", "64"},
                         {"0", "65", "-5"},
                         "'0' must be an integer from 1 to 64"},
                    Case{"Signed",
                         terminal::Integer(-2147483648, 2147483647),
                         {"-2147483648", "2147483647", "0"},
                         {"-2147483649", "2147483648", "-99999999999999999999"},
                         "'-2147483649' must be an integer from -2147483648 to 2147483647"},
                    Case{
                        "Largest",
                        terminal::Integer(0, std::numeric_limits<std::uint64_t>::max()),
                        {"18446744073709551615"},
                        {"18446744073709551616", "-1"},
                        "'18446744073709551616' must be an integer from 0 to 18446744073709551615"},
                    Case{"Seconds",
                         terminal::Seconds(0.1),
                         {"0.1", "86400", "1e3"},
                         {"0", "0.05", "86401", "-1", "nan", "inf", "", "5s"},
                         "'0' must be a number of seconds from 0.1 to 86400"},
                    Case{"OnOff",
                         terminal::OneOf({"on", "off"}),
                         {"on", "off"},
                         {"maybe", "", "ON"},
                         "'maybe' must be on or off"}),
    [](const testing::TestParamInfo<Case>& it) { return std::string(it.param.name); });

// A program with one noun and a number.
struct Program {
  Program() {
    app.require_subcommand(1);
    CLI::App* noun = app.add_subcommand("noun", "Things.");
    noun->require_subcommand(1);
    CLI::App* set = noun->add_subcommand("set", "Set.");
    terminal::AddInteger(*set, "ID", number, "Its id")->required();
    CLI::Option* name = set->add_option("--name", text, "Its name");
    set->add_flag("--unnamed", "None")->excludes(name)->disable_flag_override();
  }

  void Parse(const std::vector<std::string>& words) {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  }

  CLI::App app{"Do things.", "program"};
  std::uint32_t number = 0;
  std::string text;
};

// What it says of command lines that are wrong.
std::string Complaint(const std::vector<std::string>& words) {
  Program program;
  try {
    program.Parse(words);
  } catch (const CLI::ParseError& error) {
    return terminal::Explain(program.app, error);
  }
  return "";
}

TEST(CommandLine, IntegerBeginsWithZero_IsParsed_IsDecimal) {
  Program program;
  program.Parse({"noun", "set", "010"});
  EXPECT_EQ(program.number, 10U);
}

TEST(CommandLine, Wrong_IsExplained_NamesTheCulprit) {
  EXPECT_EQ(Complaint({"noun", "set", "4294967295"}), "");
  EXPECT_EQ(Complaint({"noun", "set", "4294967296"}),
            "ID: '4294967296' must be an integer from 0 to 4294967295");
  EXPECT_EQ(Complaint({"noun", "set"}), "ID is required");
  EXPECT_EQ(Complaint({"noun", "set", "1", "2"}), "unexpected argument '2'");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--more"}), "unexpected argument '--more'");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--nane", "a"}),
            "unexpected argument '--nane'; did you mean '--name'?");
  EXPECT_EQ(Complaint({"noun", "se", "1"}), "unexpected argument 'se'; did you mean 'set'?");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--name"}), "--name requires a value");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--name=a", "--name=b"}),
            "--name can be given only once");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--unnamed=2"}), "--unnamed does not have a value");
  EXPECT_EQ(Complaint({"noun", "set", "1", "--unnamed", "--name=a"}),
            "--name cannot be combined with --unnamed");
  EXPECT_EQ(Complaint({"noun", "put"}), "unexpected argument 'put'");
  EXPECT_EQ(Complaint({"verb"}), "unexpected argument 'verb'");
  EXPECT_EQ(Complaint({"noun"}), "a command is required");
  EXPECT_EQ(Complaint({}), "a command is required");
}

}  // namespace
