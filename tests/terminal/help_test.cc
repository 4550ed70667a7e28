#include "terminal/help.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using terminal::Entry;
using terminal::Wrapped;

// Ten times the word.
std::string Words(const std::string& word) {
  std::string text = word;
  for (int i = 0; i < 9; ++i) text += " " + word;
  return text;
}

TEST(WrappedText, LongerThanALine_IsBrokenBetweenWords) {
  const std::string eight =
      "12345678 12345678 12345678 12345678 12345678 12345678 12345678 12345678";
  EXPECT_EQ(Wrapped(Words("12345678"), 0), eight + " 12345678\n12345678\n");
  EXPECT_EQ(Wrapped(Words("12345678"), 1), " " + eight + "\n 12345678 12345678\n");
}

TEST(WrappedText, ExactlyOneLine_IsNotBroken) {
  EXPECT_EQ(Wrapped(std::string(39, 'a') + " " + std::string(40, 'b'), 0),
            std::string(39, 'a') + " " + std::string(40, 'b') + "\n");
  EXPECT_EQ(Wrapped(std::string(40, 'a') + " " + std::string(40, 'b'), 0),
            std::string(40, 'a') + "\n" + std::string(40, 'b') + "\n");
}

TEST(WrappedText, WordLongerThanALine_HasALineOfItsOwn) {
  EXPECT_EQ(Wrapped("a " + std::string(90, 'b') + " c", 0), "a\n" + std::string(90, 'b') + "\nc\n");
}

TEST(WrappedText, WideCharacters_CountAsTheirColumns) {
  EXPECT_EQ(Wrapped(Words("\u97f3\u58f0\u97f3\u58f0"), 72), [] {
    std::string lines;
    for (int i = 0; i < 10; ++i) lines += std::string(72, ' ') + "\u97f3\u58f0\u97f3\u58f0\n";
    return lines;
  }());
}

TEST(WrappedText, SeveralLines_StaySeparateWithTheirIndents) {
  EXPECT_EQ(Wrapped("One.\n  Two.\n\nThree.", 1), " One.\n   Two.\n\n Three.\n");
}

TEST(EntryText, TermAndDescription_StandInColumns) {
  EXPECT_EQ(Entry("--json", "Print"), "  --json                      Print\n");
  EXPECT_EQ(Entry(std::string(26, 'x'), "Print"), "  " + std::string(26, 'x') + "  Print\n");
}

TEST(EntryText, TermTooLong_DescriptionBeginsBelow) {
  EXPECT_EQ(Entry(std::string(27, 'x'), "Print"),
            "  " + std::string(27, 'x') + "\n" + std::string(30, ' ') + "Print\n");
}

TEST(EntryText, LongDescription_ContinuesInItsColumn) {
  EXPECT_EQ(Entry("x", Words("123456789")),
            "  x" + std::string(27, ' ') + "123456789 123456789 123456789 123456789 123456789\n" +
                std::string(30, ' ') + "123456789 123456789 123456789 123456789 123456789\n");
}

TEST(EntryText, NoDescription_EndsWithTheTerm) { EXPECT_EQ(Entry("x", ""), "  x\n"); }

// A program with a noun of two commands, and one command of its own.
class Pages : public testing::Test {
 protected:
  Pages() {
    app.formatter(std::make_shared<terminal::Help>([](const CLI::App& command, bool all) {
      return terminal::Examples({command.get_name() + (all ? " all" : "")});
    }));
    app.set_help_flag("-h,--help", "Print this help");
    app.fallthrough();
    app.require_subcommand(1);
    app.add_flag("--json", json, "Print JSON");
    CLI::App* noun = app.add_subcommand("noun", "Things.");
    CLI::App* set = noun->add_subcommand("set", "Set a thing.");
    set->add_option("ID", values, "Its id")->required();
    set->add_option("--name", value, "Its name")->type_name("NAME");
    noun->add_subcommand("list", "List the things.");
  }

  std::string Page(const std::vector<std::string>& words, bool all = false) {
    app.clear();
    CLI::App* command = &app;
    std::string above;
    for (const std::string& word : words) {
      above += (above.empty() ? "" : " ") + command->get_name();
      command = command->get_subcommand(word);
    }
    return command->help(above, all ? CLI::AppFormatMode::All : CLI::AppFormatMode::Normal);
  }

  CLI::App app{"Do things.", "program"};
  bool json = false;
  std::string value;
  std::vector<std::string> values;
};

TEST_F(Pages, Program_ListsCommandsAndOptions) {
  app.set_help_all_flag("--help-all", "Print more");
  EXPECT_EQ(Page({}),
            "Usage: program COMMAND [OPTION]...\n"
            "Do things.\n"
            "\nCommands:\n"
            "  noun [COMMAND]              Things.\n"
            "\nOptions:\n"
            "  -h, --help                  Print this help\n"
            "  --json                      Print JSON\n"
            "  --help-all                  Print more\n"
            "\nExamples:\n"
            "  $ program\n");
}

TEST_F(Pages, ProgramWithoutHelpAll_DescribesItsCommandsToo) {
  EXPECT_NE(Page({}).find("\nCommands of 'noun':\n"
                          "  set ID...                   Set a thing.\n"
                          "  list                        List the things.\n"),
            std::string::npos);
}

TEST_F(Pages, TwoArgumentsInOne_AreShownWithABlankBetween) {
  app.get_subcommand("noun")->get_subcommand("list")->add_option("ID_NAME", values, "Both");
  const std::string page = Page({"noun", "list"});
  EXPECT_NE(page.find("Usage: program noun list [ID NAME]... [OPTION]...\n"), std::string::npos);
  EXPECT_NE(page.find("  ID NAME                     Both\n"), std::string::npos);
}

TEST_F(Pages, Command_ListsItsOwnOptionsAndThoseOfEveryCommand) {
  EXPECT_EQ(Page({"noun", "set"}),
            "Usage: program noun set ID... [OPTION]...\n"
            "Set a thing.\n"
            "\nArguments:\n"
            "  ID                          Its id\n"
            "\nOptions:\n"
            "  --name NAME                 Its name\n"
            "\nOptions of every command:\n"
            "  -h, --help                  Print this help\n"
            "  --json                      Print JSON\n"
            "\nExamples:\n"
            "  $ set\n");
}

TEST_F(Pages, NounWithAll_DescribesCommandsThatHaveArguments) {
  const std::string page = Page({"noun"}, true);
  EXPECT_NE(page.find("\nArguments and options of 'set':\n"
                      "  ID                          Its id\n"
                      "  --name NAME                 Its name\n"),
            std::string::npos);
  EXPECT_EQ(page.find("options of 'list'"), std::string::npos);
  EXPECT_NE(page.find("\nExamples:\n  $ noun all\n"), std::string::npos);
  EXPECT_EQ(Page({"noun"}).find("Arguments and options"), std::string::npos);
}

TEST_F(Pages, CommandWithoutFallthrough_DoesNotListOptionsOfOthers) {
  app.get_subcommand("noun")->get_subcommand("list")->fallthrough(false);
  EXPECT_EQ(Page({"noun", "list"}).find("--json"), std::string::npos);
}

}  // namespace
