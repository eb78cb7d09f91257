// Each outcome of an added expense, through the real program.
#include "feedback/amount_formatter.h"
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AddExpenseByProgram : public testkit::ExtensionProgram {
 protected:
  [[nodiscard]] ProgramResult add(const std::string& amount, const std::string& merchant) const {
    return run({"perform", "AddExpenseIntent", "--amount", amount, "--merchant", merchant});
  }
  [[nodiscard]] ProgramResult addWithMerchantPiped(const std::string& merchant) const {
    return run({"perform", "AddExpenseIntent", "--amount", "25", "--merchant", "-"}, merchant);
  }
};

TEST_F(AddExpenseByProgram, ASavedExpenseIsTrackedAndCounted) {
  signIn();
  backend.answers(200, testkit::savedAnswer("expense"));
  expectAnswered(add("25", "Cafe"),
                 "Tracked " + AmountFormatter::format(store(), 150) + " at Carrefour");
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 25.0 EGP at Cafe"));
  EXPECT_EQ(text(StoreKeys::todayTotal), "150.0");
  EXPECT_EQ(text(StoreKeys::todayCount), "1");
}

TEST_F(AddExpenseByProgram, ASavedIncomeIsTrackedAsAnExpense) {
  signIn();
  backend.answers(200, testkit::savedAnswer("income"));
  expectAnswered(add("1e3", "Cafe"),
                 "Tracked " + AmountFormatter::format(store(), 150) + " at Carrefour");
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 1000.0 EGP at Cafe"));
  EXPECT_EQ(text(StoreKeys::todayTotal), "150.0");
}

TEST_F(AddExpenseByProgram, AnExpenseThatIsNotSavedIsReportedAsNotTracked) {
  signIn();
  backend.answers(200, R"({"saved":false,"reason":"declined"})");
  expectAnswered(add("25", "Cafe"), "Failed to track expense");
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AddExpenseByProgram, AZeroOrNegativeAmountIsRefused) {
  signIn();
  for (const auto* const amount : {"0", "-0", "-5", "-.5"}) {
    expectAnswered(add(amount, "Cafe"), "No expense to track");
  }
  expectAnswered(add("25", " \t"), "No expense to track");
  expectNothingSentOrStored();
}

TEST_F(AddExpenseByProgram, ASignedOutUserIsAskedToSignIn) {
  expectAnswered(add("25", "Cafe"), "Please open Kivo app and sign in first");
}

TEST_F(AddExpenseByProgram, AnUnreachableBackendLeavesTheExpenseQueued) {
  signIn();
  backend.goAway();
  expectAnswered(add("12.5", " Cafe "),
                 "AddExpenseIntent error: URLError cannotConnectToHost: The host did not take the "
                 "connection\nSaved offline - will process when connected");
  ASSERT_THAT(queue(), SizeIs(1));
  const PendingSmsItem item = queue().front();
  EXPECT_EQ(item.smsText, "Paid 12.5 EGP at  Cafe ");
  EXPECT_EQ(item.source, "apple_pay");
  EXPECT_EQ(item.amount, 12.5);
  EXPECT_EQ(item.merchant, " Cafe ");
  EXPECT_EQ(item.retryCount, 0);
  EXPECT_EQ(text(StoreKeys::pendingSmsQueueCount), "1");

  backend.comeBack();
  backend.answers(200, testkit::savedAnswer("expense"));
  EXPECT_EQ(add("1", "Bakery").status, 0);
  ASSERT_THAT(sent("idempotency_key"), SizeIs(2));
  EXPECT_EQ(sent("idempotency_key").back(), item.id);
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AddExpenseByProgram, AnswersAsOneJSONObjectWhenAskedTo) {
  signIn();
  backend.answers(200, R"({"saved":true,"expense":{"id":"1","description":"A \"B\"\nC",)"
                       R"("amount":1,"category":"","expense_date":""}})");
  const ProgramResult result =
      run({"perform", "AddExpenseIntent", "--json", "--amount", "1", "--merchant", "x"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::StartsWith(R"({"dialog":"Tracked )"));
  EXPECT_THAT(result.output, testing::EndsWith(R"( at A \"B\"\nC"})"
                                               "\n"));
}

// The merchant from standard input.

TEST_F(AddExpenseByProgram, AMerchantIsReadFromStandardInputByteForByte) {
  signIn();
  const std::string merchant("Caf\xc3\xa9\0 \n\n", 9);
  expectAnswered(addWithMerchantPiped(merchant), "Failed to track expense");
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 25.0 EGP at " + merchant));
}

TEST_F(AddExpenseByProgram, AMerchantOfInvalidUtf8IsRepaired) {
  signIn();
  expectAnswered(addWithMerchantPiped("Caf\xff \xe2\x82"), "Failed to track expense");
  expectAnswered(add("25", "Caf\xe9"), "Failed to track expense");
  EXPECT_THAT(sent("sms_text"),
              ElementsAre("Paid 25.0 EGP at Caf\ufffd \ufffd", "Paid 25.0 EGP at Caf\ufffd"));
}

TEST_F(AddExpenseByProgram, AMerchantOfAMegabyteWithNULsIsSentAndQueuedWhole) {
  signIn();
  std::string merchant(1 << 20, 'x');
  merchant[1000] = '\0';
  expectAnswered(addWithMerchantPiped(merchant), "Failed to track expense");
  EXPECT_THAT(sent("sms_text"), ElementsAre("Paid 25.0 EGP at " + merchant));
  backend.goAway();
  EXPECT_EQ(addWithMerchantPiped(merchant).status, 0);
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].merchant, merchant);
}

// Usage errors.

TEST_F(AddExpenseByProgram, ABadNumberIsAUsageError) {
  for (const std::string amount :
       {"", " 5", "5 ", "0x10", "inf", "-inf", "nan", "1,5", "1e999", "٥", "five", "5 EGP"}) {
    expectUsageError({"perform", "AddExpenseIntent", "--amount", amount, "--merchant", "Cafe"},
                     "--amount needs a number such as 12.5");
  }
}

TEST_F(AddExpenseByProgram, AnAmountFromStandardInputIsAUsageError) {
  expectUsageError({"perform", "AddExpenseIntent", "--amount", "-", "--merchant", "Cafe"},
                   "--amount cannot be read from standard input", "12.5");
}

TEST_F(AddExpenseByProgram, TwoParametersFromStandardInputAreAUsageError) {
  expectUsageError({"perform", "AddExpenseIntent", "--amount", "-", "--merchant", "-"},
                   "only one parameter can be read from standard input", "12.5");
}

TEST_F(AddExpenseByProgram, AMissingParameterIsAUsageError) {
  expectUsageError({"perform", "AddExpenseIntent", "--amount", "5"},
                   "missing parameter --merchant");
  expectUsageError({"perform", "AddExpenseIntent", "--merchant", "-"}, "missing parameter --amount",
                   "Cafe");
}

}  // namespace
}  // namespace kivo
