#include "platform/linux/terminal/prompt.h"

#include <sstream>

#include <gmock/gmock.h>

namespace kivo::linux_platform {
namespace {

class APrompt : public testing::Test {
 protected:
  // Whether `answer` confirms a question.
  bool confirms(const std::string& answer, Prompt::Preset preset) {
    std::istringstream answers(answer);
    testing::internal::CaptureStderr();
    const bool confirmed = Prompt(answers).confirms("Sure?", preset);
    shown_ = testing::internal::GetCapturedStderr();
    return confirmed;
  }

  std::string shown_;
};

TEST_F(APrompt, ReturnsTheAnswerWithoutBlanksAndAsValidText) {
  std::istringstream answers(" a b\t\r\n\xff\n\n");
  Prompt prompt(answers);
  testing::internal::CaptureStderr();
  EXPECT_EQ(prompt.ask("One?"), "a b");
  EXPECT_EQ(prompt.ask("Two?"), "\ufffd");
  EXPECT_EQ(prompt.ask("Three?"), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "One? Two? Three? ");
}

TEST_F(APrompt, EndsTheLineWhenTheInputEnds) {
  std::istringstream answers;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Prompt(answers).ask("One?"), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "One? \n");
}

TEST_F(APrompt, TakesYForYes) {
  for (const char* const yes : {"y\n", "Y\n", "yes\n", " y\n", "y"}) {
    EXPECT_TRUE(confirms(yes, Prompt::Preset::no)) << yes;
    EXPECT_TRUE(confirms(yes, Prompt::Preset::yes)) << yes;
  }
  for (const char* const no : {"n\n", "no\n", "yy\n", "-\n", ""}) {
    EXPECT_FALSE(confirms(no, Prompt::Preset::no)) << no;
    EXPECT_FALSE(confirms(no, Prompt::Preset::yes)) << no;
  }
}

TEST_F(APrompt, TakesEnterForThePresetThatItShows) {
  EXPECT_TRUE(confirms("\n", Prompt::Preset::yes));
  EXPECT_EQ(shown_, "Sure? [Y/n] ");
  EXPECT_FALSE(confirms("\n", Prompt::Preset::no));
  EXPECT_EQ(shown_, "Sure? [y/N] ");
}

}  // namespace
}  // namespace kivo::linux_platform
