// The checks of AddExpenseIntent before it sends anything, and its request.
#include <filesystem>
#include <fstream>
#include <limits>

#include "unit/intents/an_added_expense.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::TestPhone;

using Limits = std::numeric_limits<double>;

TEST_F(AnAddedExpense, IsRefusedWithAZeroOrNegativeAmount) {
  for (const double amount : {0.0, -0.0, -0.01, -25.0, -Limits::infinity()}) {
    EXPECT_EQ(perform(amount), "No expense to track") << amount;
  }
  expectNothingDone();
}

TEST_F(AnAddedExpense, IsRefusedWithNaN) {
  EXPECT_EQ(perform(Limits::quiet_NaN()), "No expense to track");
  expectNothingDone();
}

TEST_F(AnAddedExpense, IsSentWithTheSmallestPositiveAmount) {
  EXPECT_EQ(textSent(Limits::denorm_min()), "Paid 5e-324 EGP at Cafe");
}

TEST_F(AnAddedExpense, IsRefusedWithAMerchantOfBlanks) {
  for (const auto* const blanks :
       {"", " ", "\t", " \t ", "\u00a0", "\u3000", "\u2009\u202f", "\u1680\u205f"}) {
    EXPECT_EQ(perform(25, blanks), "No expense to track");
  }
  expectNothingDone();
}

TEST_F(AnAddedExpense, IsSentWithAMerchantOfLineBreaks) {
  EXPECT_EQ(textSent(25, "\n"), "Paid 25.0 EGP at \n");
  EXPECT_EQ(textSent(25, " \r\n\t"), "Paid 25.0 EGP at  \r\n\t");
  EXPECT_EQ(textSent(25, "\u2028"), "Paid 25.0 EGP at \u2028");
}

TEST_F(AnAddedExpense, IsCheckedBeforeTheStoreIsOpened) {
  std::filesystem::remove_all(phone_.folders.dataHome());
  std::ofstream(phone_.folders.dataHome()) << "a file where the folder should be";
  EXPECT_EQ(perform(0), "No expense to track");
  EXPECT_EQ(perform(25, " "), "No expense to track");
  EXPECT_EQ(perform(), "Failed to access app storage");
  EXPECT_THAT(phone_.log.names(), IsEmpty());
}

TEST_F(AnAddedExpense, IsNotSentWhenSignedOut) {
  const std::string askToSignIn = "Please open Kivo app and sign in first";
  phone_.put(StoreKeys::userId, "");
  EXPECT_EQ(perform(), askToSignIn);
  phone_.put(StoreKeys::userId, "user-0815");
  phone_.put(StoreKeys::supabaseUrl, "");
  EXPECT_EQ(perform(), askToSignIn);
  EXPECT_THAT(phone_.log.names(), IsEmpty());
}

TEST(APhoneWithoutSignIn, SendsNoExpense) {
  TestPhone phone;
  std::filesystem::remove_all(phone.folders.dataHome());
  EXPECT_EQ(addExpense().dialog(), "Please open Kivo app and sign in first");
  EXPECT_THAT(phone.log.names(), IsEmpty());
}

TEST_F(AnAddedExpense, IsSentOnceWithKeyDateAndCredentials) {
  EXPECT_EQ(textSent(25), "Paid 25.0 EGP at Cafe");
  EXPECT_EQ(phone_.session.onlyRequest().url.host, "backend.example");
  EXPECT_THAT(phone_.session.sent("user_id"), ElementsAre("user-0815"));
  EXPECT_THAT(phone_.session.sent("expense_date"), ElementsAre("2026-01-31"));
  EXPECT_THAT(phone_.session.sent("idempotency_key"),
              ElementsAre(::testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")));
}

TEST_F(AnAddedExpense, HasANewKeyInEachRun) {
  performAnswered(notSavedBody);
  performAnswered(notSavedBody);
  const auto keys = phone_.session.sent("idempotency_key");
  EXPECT_NE(keys[0], keys[1]);
}

// The sentence.

TEST_F(AnAddedExpense, IsSentInPoundsWithoutAStoredCurrency) {
  EXPECT_EQ(phone_.text(StoreKeys::currency), std::nullopt);
  EXPECT_EQ(textSent(25), "Paid 25.0 EGP at Cafe");
}

TEST_F(AnAddedExpense, IsSentInPoundsWhenTheCurrencyIsNotAText) {
  phone_.put(StoreKeys::currency, 840.0);
  EXPECT_EQ(textSent(25), "Paid 25.0 EGP at Cafe");
}

TEST_F(AnAddedExpense, IsSentWithTheStoredCurrencyUnchanged) {
  phone_.put(StoreKeys::currency, "usd ");
  EXPECT_EQ(textSent(25), "Paid 25.0 usd  at Cafe");
  phone_.put(StoreKeys::currency, "");
  EXPECT_EQ(textSent(25), "Paid 25.0  at Cafe");
}

TEST_F(AnAddedExpense, IsSentWithTheShortestDigitsThatRoundTrip) {
  EXPECT_EQ(textSent(12.5), "Paid 12.5 EGP at Cafe");
  EXPECT_EQ(textSent(0.1 + 0.2), "Paid 0.30000000000000004 EGP at Cafe");
  EXPECT_EQ(textSent(1234567), "Paid 1234567.0 EGP at Cafe") << "no grouping";
  EXPECT_EQ(textSent(1e16), "Paid 1e+16 EGP at Cafe");
  EXPECT_EQ(textSent(0.00001), "Paid 1e-05 EGP at Cafe");
  EXPECT_EQ(textSent(Limits::infinity()), "Paid inf EGP at Cafe");
}

TEST_F(AnAddedExpense, IsSentTheSameInEveryLocale) {
  const testkit::ScopedVariable arabic("LC_ALL", "ar_EG.UTF-8");
  EXPECT_EQ(textSent(1234.5), "Paid 1234.5 EGP at Cafe");
}

TEST_F(AnAddedExpense, IsSentWithTheBlanksAroundItsMerchant) {
  EXPECT_EQ(textSent(25, " \tCafe \u3000"), "Paid 25.0 EGP at  \tCafe \u3000");
}

}  // namespace
}  // namespace kivo
