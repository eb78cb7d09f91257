// The prompts of kivo-intents on a terminal for missing parameters.
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class APrompt : public testkit::ExtensionProgram {
 protected:
  APrompt() { signIn(); }
};

TEST_F(APrompt, AsksForAMissingTextByItsTitleAndDescription) {
  const ProgramResult result = onTerminal("perform ProcessSMSIntent", "Paid 150\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("SMS Text (The bank SMS message text): "));
  EXPECT_THAT(result.output, HasSubstr("SMS ignored - not a transaction"));
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 150"));
}

TEST_F(APrompt, AsksForTheAmountThenForTheMerchant) {
  const ProgramResult result = onTerminal("perform AddExpenseIntent", "12.5\nCafe Nilo\n");
  EXPECT_EQ(result.status, 0);
  const std::size_t amount = result.output.find("Amount (Transaction amount): ");
  const std::size_t merchant = result.output.find("Merchant (Merchant name or description): ");
  ASSERT_NE(amount, std::string::npos);
  ASSERT_NE(merchant, std::string::npos);
  EXPECT_LT(amount, merchant);
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 12.5 EGP at Cafe Nilo"));
}

TEST_F(APrompt, AsksOnlyForMissingParameters) {
  const ProgramResult result = onTerminal("perform AddExpenseIntent --merchant Cafe", "5\n");
  EXPECT_THAT(result.output, Not(HasSubstr("Merchant (")));
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 5.0 EGP at Cafe"));
}

TEST_F(APrompt, AsksAgainAfterAnInvalidNumber) {
  const ProgramResult result = onTerminal("perform AddExpenseIntent", "\n12,5\n٥\n12.5\nCafe\n");
  EXPECT_EQ(result.status, 0);
  std::size_t complaints = 0;
  std::size_t place = 0;
  const std::string complaint = "That does not fit; it needs a number such as 12.5.";
  while ((place = result.output.find(complaint, place)) != std::string::npos) {
    ++complaints;
    ++place;
  }
  EXPECT_EQ(complaints, 3u);
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 12.5 EGP at Cafe"));
}

TEST_F(APrompt, AcceptsAnEmptyText) {
  EXPECT_THAT(onTerminal("perform AddExpenseIntent --amount 5", "\n").output,
              HasSubstr("No expense to track"));
  expectNothingSentOrStored();
}

TEST_F(APrompt, ReportsAUsageErrorWithoutAnAnswer) {
  for (const auto& [typed, missing] : {std::pair("", "--amount"), {"12.5\n", "--merchant"}}) {
    const ProgramResult result = onTerminal("perform AddExpenseIntent", typed);
    EXPECT_EQ(result.status, 64);
    EXPECT_THAT(result.output, ContainsRegex("\nkivo-intents: missing parameter " +
                                             std::string(missing) + "\r?\n$"));
  }
  expectNothingSentOrStored();
}

TEST_F(APrompt, AcceptsTheLongestLineOfATerminal) {
  const std::string text(4094, 'x');
  EXPECT_EQ(onTerminal("perform ProcessSMSIntent", text + "\n").status, 0);
  EXPECT_THAT(sent("sms_text"), ElementsAre(text));
}

TEST_F(APrompt, RefusesALineThatTheTerminalMayHaveTruncated) {
  for (const std::size_t length : {4095U, 4096U, 5000U}) {
    const ProgramResult result =
        onTerminal("perform ProcessSMSIntent", std::string(length, 'x') + "\n");
    EXPECT_EQ(result.status, 64) << length;
    EXPECT_THAT(result.output,
                HasSubstr("kivo-intents: --smsText is too long to be typed; give it on standard "
                          "input"))
        << length;
  }
  expectNothingSentOrStored();
}

TEST_F(APrompt, RepairsInvalidUtf8) {
  EXPECT_EQ(onTerminal("perform ProcessSMSIntent", "Caf\xff\n").status, 0);
  EXPECT_THAT(sent("sms_text"), ElementsAre("Caf\ufffd"));
}

TEST_F(APrompt, IsSkippedForAParameterFromStandardInput) {
  const ProgramResult result =
      onTerminal("perform AddExpenseIntent --amount 5 --merchant -", "Cafe\nNilo\n\x04");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, Not(HasSubstr("Merchant (")));
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 5.0 EGP at Cafe\nNilo\n"));
}

}  // namespace
}  // namespace kivo
