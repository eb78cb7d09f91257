#include "platform/linux/app_intents/parameter_entry.h"

#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "intents/add_expense_intent.h"
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

  std::optional<std::string> fill(const ParameterTexts& texts, const std::string& input = "") {
    input_.str(input);
    std::cin.rdbuf(&input_);
    std::cin.clear();
    return fillParameters(intent_, texts);
  }

  AddExpenseIntent intent_;

 private:
  std::stringbuf input_;
  int standardInput_;
  std::streambuf* before_;
};

TEST_F(ParametersFromTexts, AreFilledByName) {
  EXPECT_EQ(fill({{"merchant", "Cafe"}, {"amount", "12.5"}}), std::nullopt);
  EXPECT_EQ(intent_.amount.value(), 12.5);
  EXPECT_EQ(intent_.merchant.value(), "Cafe");
}

TEST_F(ParametersFromTexts, ReadATextFromStandardInputByteForByte) {
  const std::string input("Cafe\0 \n\n", 8);
  EXPECT_EQ(fill({{"merchant", "-"}, {"amount", "1"}}, input), std::nullopt);
  EXPECT_EQ(intent_.merchant.value(), input);
  EXPECT_EQ(fill({{"merchant", "-"}, {"amount", "1"}}, ""), std::nullopt);
  EXPECT_EQ(intent_.merchant.value(), "");
}

TEST_F(ParametersFromTexts, ReadAMegabyteFromStandardInput) {
  const std::string input(1 << 20, '\0');
  EXPECT_EQ(fill({{"merchant", "-"}, {"amount", "1"}}, input), std::nullopt);
  EXPECT_EQ(intent_.merchant.value(), input);
}

TEST_F(ParametersFromTexts, CannotReadANumberFromStandardInput) {
  EXPECT_EQ(fill({{"merchant", "Cafe"}, {"amount", "-"}}, "12.5"),
            "--amount cannot be read from standard input");
}

TEST_F(ParametersFromTexts, CannotReadTwoTextsFromStandardInput) {
  EXPECT_EQ(fill({{"merchant", "-"}, {"amount", "-"}}, "12.5"),
            "only one parameter can be read from standard input");
}

TEST_F(ParametersFromTexts, ReportAnUnknownNameFirst) {
  EXPECT_EQ(fill({{"smsText", "x"}}), "unknown parameter --smsText");
}

TEST_F(ParametersFromTexts, ReportAMissingParameterWithoutATerminal) {
  EXPECT_EQ(fill({{"merchant", "Cafe"}}), "missing parameter --amount");
  EXPECT_EQ(fill({{"amount", "1"}}), "missing parameter --merchant");
}

TEST_F(ParametersFromTexts, ReportAnInvalidNumberWithoutRepeatingIt) {
  EXPECT_EQ(fill({{"merchant", "Cafe"}, {"amount", "1,5"}}),
            "--amount needs a number such as 12.5");
}

TEST_F(ParametersFromTexts, ReportTheRangeOfANumberOutsideIt) {
  testkit::RateMerchantIntent rating;
  EXPECT_EQ(fillParameters(rating, {{"merchant", "Cafe"}, {"stars", "12.5"}}),
            "--stars needs a number from 1.0 to 5.0");
}

TEST_F(ParametersFromTexts, KeepTheirDefaultsWithoutAText) {
  testkit::RateMerchantIntent rating;
  EXPECT_EQ(fillParameters(rating, {{"merchant", "Cafe"}, {"stars", "5"}}), std::nullopt);
  EXPECT_EQ(rating.remarkToKeep.value(), "no remark");
}

}  // namespace
}  // namespace kivo::linux_platform
