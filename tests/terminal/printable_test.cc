#include "terminal/printable.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {

struct Case {
  const char* name;
  std::string text;
  std::string printable;
  int width;
};

void PrintTo(const Case& it, std::ostream* out) { *out << it.name; }

class PrintableStrings : public testing::TestWithParam<Case> {};

TEST_P(PrintableStrings, Given_IsShown_InOneLineOfKnownWidth) {
  const std::string printable = terminal::Printable(GetParam().text);
  EXPECT_EQ(printable, GetParam().printable);
  EXPECT_EQ(terminal::Width(printable), GetParam().width);
}

INSTANTIATE_TEST_SUITE_P(
    , PrintableStrings,
    testing::Values(
        Case{"Empty", "", "", 0}, Case{"Ascii", "Mic 1", "Mic 1", 5},
        Case{"Umlaut", "K\u00fcche", "K\u00fcche", 5},
        Case{"CombiningAccent", "Ku\u0308che", "Ku\u0308che", 5},
        Case{"WideIdeographs", "\u97f3\u58f0", "\u97f3\u58f0", 4},
        Case{"BeyondTheFirstPlane", "\U0001F3A4", "\U0001F3A4", 2},
        Case{"Backslash", "a\\nb", "a\\nb", 4}, Case{"LineFeed", "a\nb", "a\\nb", 4},
        Case{"CarriageReturn", "a\rb", "a\\rb", 4}, Case{"Tab", "a\tb", "a\\tb", 4},
        Case{"Escape", "\033[1mbold", "\\x1b[1mbold", 11}, Case{"Delete", "\x7f", "\\x7f", 4},
        Case{"Nul", std::string("a\0b", 3), "a\\x00b", 6},
        Case{"ControlOfTwoBytes", "\u0085", "\\u0085", 6},
        Case{"RightToLeftOverride", "a\u202eb", "a\\u202eb", 8},
        Case{"Isolate", "\u2066", "\\u2066", 6}, Case{"SpaceWithoutWidth", "\u200b", "\\u200b", 6},
        Case{"ByteOrderMark", "\ufeff", "\\ufeff", 6},
        Case{"LineSeparator", "\u2028", "\\u2028", 6}, Case{"Tag", "\U000e0041", "\\U000e0041", 10},
        Case{"LoneByte",
             "a\xff"
             "b",
             "a\\xffb", 6},
        Case{"CutCharacter", "a\xe9\x9f", "a\\xe9\\x9f", 9},
        Case{"OverlongSlash", "\xc0\xaf", "\\xc0\\xaf", 8},
        Case{"Surrogate", "\xed\xa0\x80", "\\xed\\xa0\\x80", 12}),
    [](const testing::TestParamInfo<Case>& it) { return std::string(it.param.name); });

TEST(JsonText, CharactersThatActOnATerminal_AreEscaped_OthersStay) {
  EXPECT_EQ(terminal::EscapedInJson("{\n  \"K\u00fcche\": \"\\u001b\"\n}\n"),
            "{\n  \"K\u00fcche\": \"\\u001b\"\n}\n");
  EXPECT_EQ(terminal::EscapedInJson("\"\x7f\u009b\u202e\U000e0041\""),
            "\"\\u007f\\u009b\\u202e\\udb40\\udc41\"");
}

}  // namespace
