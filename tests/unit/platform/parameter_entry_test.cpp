#include "platform/linux/app_intents/parameter_entry.h"

#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "intents/add_expense_intent.h"
#include "platform/linux/terminal/command_failure.h"
#include "testkit/rate_merchant_intent.h"

namespace kivo::linux_platform {
namespace {

// Standard input is a text and not a terminal.
class ParametersFromTexts : public ::testing::Test {
 protected:
  ParametersFromTexts() : standardInput_(dup(STDIN_FILENO)), before_(std::cin.rdbuf()) {
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    close(null);
  }
  ~ParametersFromTexts() override {
    std::cin.rdbuf(before_);
    std::cin.clear();
    if (standardInput_ >= 0) dup2(standardInput_, STDIN_FILENO);
    if (standardInput_ >= 0) close(standardInput_);
  }

  void fill(const ParameterTexts& texts, const std::string& input = "") {
    input_.str(input);
    std::cin.rdbuf(&input_);
    std::cin.clear();
    fillParameters(intent_, texts);
  }
  // The sentence by which `texts` are refused; empty when they are not.
  std::string refusal(const ParameterTexts& texts, const std::string& input = "") {
    try {
      fill(texts, input);
    } catch (const BadUsage& refused) {
      return refused.what();
    }
    return "";
  }

  AddExpenseIntent intent_;

 private:
  std::stringbuf input_;
  int standardInput_;
  std::streambuf* before_;
};

TEST_F(ParametersFromTexts, AreFilledByName) {
  fill({{"merchant", "Cafe"}, {"amount", "12.5"}});
  EXPECT_EQ(intent_.amount.value(), 12.5);
  EXPECT_EQ(intent_.merchant.value(), "Cafe");
}

TEST_F(ParametersFromTexts, ReadATextFromStandardInputByteForByte) {
  const std::string input("Cafe\0 \n\n", 8);
  fill({{"merchant", "-"}, {"amount", "1"}}, input);
  EXPECT_EQ(intent_.merchant.value(), input);
  fill({{"merchant", "-"}, {"amount", "1"}}, "");
  EXPECT_EQ(intent_.merchant.value(), "");
}

TEST_F(ParametersFromTexts, ReadAMegabyteFromStandardInput) {
  const std::string input(1 << 20, '\0');
  fill({{"merchant", "-"}, {"amount", "1"}}, input);
  EXPECT_EQ(intent_.merchant.value(), input);
}

TEST_F(ParametersFromTexts, CannotReadANumberFromStandardInput) {
  EXPECT_EQ(refusal({{"merchant", "Cafe"}, {"amount", "-"}}, "12.5"),
            "--amount cannot be read from standard input");
}

TEST_F(ParametersFromTexts, CannotReadTwoTextsFromStandardInput) {
  EXPECT_EQ(refusal({{"merchant", "-"}, {"amount", "-"}}, "12.5"),
            "only one parameter can be read from standard input");
}

TEST_F(ParametersFromTexts, ReportAnUnknownNameFirst) {
  EXPECT_EQ(refusal({{"smsText", "x"}}), "unknown parameter --smsText");
}

TEST_F(ParametersFromTexts, ReportAMissingParameterWithoutATerminal) {
  EXPECT_EQ(refusal({{"merchant", "Cafe"}}), "missing parameter --amount");
  EXPECT_EQ(refusal({{"amount", "1"}}), "missing parameter --merchant");
}

TEST_F(ParametersFromTexts, ReportAnInvalidNumberWithoutRepeatingIt) {
  EXPECT_EQ(refusal({{"merchant", "Cafe"}, {"amount", "1,5"}}),
            "--amount needs a number such as 12.5");
}

TEST_F(ParametersFromTexts, ReportTheRangeOfANumberOutsideIt) {
  testkit::RateMerchantIntent rating;
  EXPECT_THAT(
      [&] {
        fillParameters(rating, {{"merchant", "Cafe"}, {"stars", "12.5"}});
      },
      testing::ThrowsMessage<BadUsage>("--stars needs a number from 1.0 to 5.0"));
}

TEST_F(ParametersFromTexts, KeepTheirDefaultsWithoutAText) {
  testkit::RateMerchantIntent rating;
  fillParameters(rating, {{"merchant", "Cafe"}, {"stars", "5"}});
  EXPECT_EQ(rating.remarkToKeep.value(), "no remark");
}

}  // namespace
}  // namespace kivo::linux_platform
