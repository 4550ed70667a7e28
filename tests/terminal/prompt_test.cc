#include "terminal/prompt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>

#include "support/captured_stderr.h"

namespace {

// Standard input is a pipe that the test writes to.
class Prompt : public testing::Test {
 protected:
  Prompt() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) std::abort();
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    input = ends[1];
  }
  ~Prompt() override { EndInput(); }

  void Type(const std::string& text) const {
    ASSERT_EQ(write(input, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void EndInput() {
    if (input >= 0) close(input);
    input = -1;
  }

  support::CapturedStderr errors;

 private:
  int input = -1;
};

TEST_F(Prompt, Asked_PrintsTheQuestionAndTheChoice) {
  Type("y\n");
  terminal::AnswersYes("Change it?");
  EXPECT_EQ(errors.Take(), "Change it? [y/N] ");
}

TEST_F(Prompt, Answers_OnlyYesIsYes) {
  for (const char* yes : {"y\n", "Y\n", "yes\n"}) {
    Type(yes);
    EXPECT_TRUE(terminal::AnswersYes("?")) << yes;
  }
  for (const char* no : {"\n", "n\n", "yes please\n", " y\n", "ye\n"}) {
    Type(no);
    EXPECT_FALSE(terminal::AnswersYes("?")) << no;
  }
}

TEST_F(Prompt, TwoLines_EachAnswersOneQuestion) {
  Type("y\nn\n");
  EXPECT_TRUE(terminal::AnswersYes("?"));
  EXPECT_FALSE(terminal::AnswersYes("?"));
}

TEST_F(Prompt, InputEndsWithoutALine_IsNo) {
  Type("y");
  EndInput();
  EXPECT_FALSE(terminal::AnswersYes("?"));
}

TEST_F(Prompt, NobodyAnswers_EndsWhenItIsNotToGoOn) {
  int left = 3;
  EXPECT_EQ(terminal::Ask("?", [&left] { return --left > 0; }), terminal::Answer::kNone);
  EXPECT_EQ(left, 0);
}

TEST_F(Prompt, NoTerminal_HasNobodyToAsk) { EXPECT_FALSE(terminal::HasPerson()); }

}  // namespace
