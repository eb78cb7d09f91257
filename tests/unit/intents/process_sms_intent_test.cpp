// ProcessSMSIntent for each answer of the backend.
#include "intents/process_sms_intent.h"

#include "testkit/written_output.h"
#include "unit/intents/a_bank_sms.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::queuedItem;
using testkit::savedBody;
using testkit::TestPhone;

// Answers with nothing saved.

TEST_F(ABankSMS, IsNotTrackedWhenTheTransactionWasDeclined) {
  EXPECT_EQ(performAnswered(testkit::declinedBody), "Transaction was declined - not tracked");
  expectNothingButTheExchange();
}

TEST_F(ABankSMS, IsIgnoredWhenItIsNotATransaction) {
  for (const auto* const body :
       {R"({"saved":false})", R"({"saved":false,"reason":null})", R"({"saved":false,"reason":""})",
        R"({"saved":false,"reason":"otp"})"}) {
    EXPECT_EQ(performAnswered(body), "SMS ignored - not a transaction") << body;
  }
  EXPECT_EQ(phone_.log.names(), std::vector<std::string>(4, "exchange"));
  EXPECT_EQ(phone_.contents(), before_);
}

TEST_F(ABankSMS, IsDeclinedOnlyWithTheExactReason) {
  for (const auto* const reason : {"Declined", "DECLINED", "declined ", "decline"}) {
    EXPECT_EQ(performAnswered(R"({"saved":false,"reason":")" + std::string(reason) + R"("})"),
              "SMS ignored - not a transaction");
  }
}

TEST_F(ABankSMS, IsIgnoredWhenSavedWithoutAnExpense) {
  EXPECT_EQ(performAnswered(R"({"saved":true,"transaction_type":"expense","expense":null})"),
            "SMS ignored - not a transaction");
  expectNothingButTheExchange();
}

TEST_F(ABankSMS, CanBeDeclinedWhenSavedWithoutAnExpense) {
  EXPECT_EQ(performAnswered(R"({"saved":true,"reason":"declined"})"),
            "Transaction was declined - not tracked");
  expectNothingButTheExchange();
}

TEST_F(ABankSMS, IsIgnoredWhenAnExpenseIsNotSaved) {
  EXPECT_EQ(performAnswered(R"({"saved":false,"expense":{"id":"e","description":"d","amount":1,)"
                            R"("category":"c","expense_date":"x"}})"),
            "SMS ignored - not a transaction");
  expectNothingButTheExchange();
}

TEST_F(ABankSMS, IsTrackedWhenSavedWithAReason) {
  EXPECT_EQ(performSaved(R"({"saved":true,"reason":"declined","expense":{"id":"e",)"
                         R"("description":"d","amount":1,"category":"c","expense_date":"x"}})"),
            "Tracked EGP\u00a01.00 at d");
}

// Answers with a saved transaction.

TEST_F(ABankSMS, IsTrackedWhenItIsAnExpense) {
  EXPECT_EQ(performSaved(savedBody({.type = "expense"})), "Tracked EGP\u00a0150.00 at Carrefour");
  EXPECT_THAT(totals(), ElementsAre("150.0", "1", "150.0"));
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)"));
  expectReloadedAndDrained();
}

TEST_F(ABankSMS, IsAnExpenseWithoutAType) {
  EXPECT_EQ(performSaved(savedBody()), "Tracked EGP\u00a0150.00 at Carrefour");
  EXPECT_THAT(totals(), ElementsAre("150.0", "1", "150.0"));
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)"));
  expectReloadedAndDrained();
}

TEST_F(ABankSMS, IsReceivedAndNotCountedWhenItIsIncome) {
  EXPECT_EQ(performSaved(savedBody({.type = "income", .description = "Employer"})),
            "Received EGP\u00a0150.00 from Employer");
  expectTotalsLeftAlone();
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💰 Income Received | EGP\u00a0150.00 from Employer (Groceries)"));
  expectReloadedAndDrained();
}

class OfAnotherType : public ABankSMS, public ::testing::WithParamInterface<std::string> {};

TEST_P(OfAnotherType, ABankSMSIsTrackedButNotCounted) {
  EXPECT_EQ(performSaved(savedBody({.type = GetParam()})), "Tracked EGP\u00a0150.00 at Carrefour");
  expectTotalsLeftAlone();
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)"));
  expectReloadedAndDrained();
}

INSTANTIATE_TEST_SUITE_P(Types, OfAnotherType,
                         ::testing::Values("transfer", "Expense", "Income", "expense ", ""));

class OfAnExcludedCategory : public ABankSMS, public ::testing::WithParamInterface<std::string> {};

TEST_P(OfAnExcludedCategory, ABankSMSIsTrackedButNotCounted) {
  EXPECT_EQ(performSaved(savedBody({.type = "expense", .category = GetParam()})),
            "Tracked EGP\u00a0150.00 at Carrefour");
  expectTotalsLeftAlone();
  EXPECT_THAT(phone_.notifications.told(), ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at "
                                                       "Carrefour (" +
                                                       GetParam() + ")"));
  expectReloadedAndDrained();
}

INSTANTIATE_TEST_SUITE_P(Categories, OfAnExcludedCategory,
                         ::testing::Values("__system_transfer__", "Credit Card Settlement"));

TEST_F(ABankSMS, IsCountedInAnExcludedCategoryOfAnotherCase) {
  performSaved(savedBody({.category = "credit card settlement"}));
  EXPECT_THAT(totals(), ElementsAre("150.0", "1", "150.0"));
}

TEST_F(ABankSMS, ShowsANegativeAmountUnsignedAndCountsItSigned) {
  EXPECT_EQ(performSaved(savedBody({.amount = -20.5})), "Tracked EGP\u00a020.50 at Carrefour");
  EXPECT_THAT(totals(), ElementsAre("-20.5", "1", "-20.5"));
}

TEST_F(ABankSMS, FormatsTheAmountAgainForTheDialog) {
  phone_.session.willAnswer(savedBody());
  phone_.session.willDo([](const platform::URLRequest&) {
    TestPhone::put(StoreKeys::currency, "USD");  // the app changes it while the queue drains
    return platform::URLAnswer{.data = notSavedBody,
                               .response = platform::HTTPURLResponse{.statusCode = 200}};
  });
  EXPECT_EQ(perform(), "Tracked $150.00 at Carrefour");
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)"));
}

TEST_F(ABankSMS, GetsTheSameAnswerWithoutNotifications) {
  phone_.notifications.setStatus(platform::UNAuthorizationStatus::denied);
  EXPECT_EQ(performSaved(savedBody()), "Tracked EGP\u00a0150.00 at Carrefour");
  EXPECT_THAT(phone_.notifications.told(), IsEmpty());
  expectReloadedAndDrained();
}

TEST_F(ABankSMS, RetriesThreeQueuedTextsAtMost) {
  SharedStore store = phone_.openStore();
  PendingSmsQueue::save({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")},
                        store);
  phone_.session.willAnswer(savedBody());
  for (int item = 0; item < 3; ++item) phone_.session.willAnswer(notSavedBody);
  perform();
  EXPECT_EQ(testkit::idsAndCounts(PendingSmsQueue::load(store)), std::vector<std::string>{"D:0"});
}

TEST_F(ABankSMS, GetsItsAnswerWhenTheDrainFails) {
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer("", 500);
  EXPECT_EQ(perform(), "Tracked EGP\u00a0150.00 at Carrefour");
  EXPECT_EQ(testkit::idsAndCounts(PendingSmsQueue::load(phone_.openStore())),
            std::vector<std::string>{"waiting:1"});
}

TEST_F(ABankSMS, TakesItsStepsInOrder) {
  performSaved(savedBody());
  expectStepsOfASavedExpenseInOrder();
}

TEST_F(ABankSMS, GetsItsAnswerAfterTheDrain) {
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun run("Paid 150");
  phone_.session.gate().waitForArrivals(1);
  phone_.session.gate().letOneThrough();
  phone_.session.gate().waitForArrivals(2);
  EXPECT_FALSE(run.hasEnded());
  phone_.session.gate().open();
  EXPECT_EQ(run.dialog(), "Tracked EGP\u00a0150.00 at Carrefour");
}

TEST_F(ABankSMS, PrintsNothingOnSuccess) {
  const auto written = testkit::writtenBy([&] { performSaved(savedBody()); });
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.err, "");
}

}  // namespace
}  // namespace kivo
