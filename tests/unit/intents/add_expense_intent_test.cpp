// AddExpenseIntent for each answer of the backend.
#include "unit/intents/an_added_expense.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::queuedItem;
using testkit::savedBody;
using testkit::TestPhone;

const std::string tracked = "Tracked EGP\u00a0150.00 at Carrefour";

// Answers with nothing saved.

TEST_F(AnAddedExpense, IsReportedAsNotTrackedForAnyReason) {
  for (const auto* const body :
       {R"({"saved":false})", R"({"saved":false,"reason":null})", R"({"saved":false,"reason":""})",
        R"({"saved":false,"reason":"declined"})", R"({"saved":false,"reason":"otp"})"}) {
    EXPECT_EQ(performAnswered(body), "Failed to track expense") << body;
  }
  EXPECT_EQ(phone_.log.names(), std::vector<std::string>(5, "exchange"));
  EXPECT_EQ(phone_.contents(), before_);
}

TEST_F(AnAddedExpense, IsReportedAsNotTrackedWithoutAnExpense) {
  EXPECT_EQ(performAnswered(testkit::savedWithoutExpenseBody), "Failed to track expense");
  expectNothingButTheExchange();
}

TEST_F(AnAddedExpense, IsReportedAsNotTrackedWhenAnExpenseIsNotSaved) {
  EXPECT_EQ(performAnswered(R"({"saved":false,"expense":{"id":"e","description":"d","amount":1,)"
                            R"("category":"c","expense_date":"x"}})"),
            "Failed to track expense");
  expectNothingButTheExchange();
}

// Answers with a saved expense.

class OfEveryType : public AnAddedExpense,
                    public ::testing::WithParamInterface<std::optional<std::string>> {};

TEST_P(OfEveryType, AnAddedExpenseIsTrackedAndCounted) {
  EXPECT_EQ(performSaved(savedBody({.type = GetParam()})), tracked);
  EXPECT_THAT(totals(), ElementsAre("150.0", "1", "150.0"))
      << "the amount that the backend answered";
  EXPECT_THAT(phone_.notifications.told(),
              ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)"));
  expectReloadedAndDrained();
}

INSTANTIATE_TEST_SUITE_P(Types, OfEveryType,
                         ::testing::Values(std::nullopt, "expense", "income", "transfer", ""));

class InAnExcludedCategory : public AnAddedExpense,
                             public ::testing::WithParamInterface<std::string> {};

TEST_P(InAnExcludedCategory, AnAddedExpenseIsTrackedButNotCounted) {
  EXPECT_EQ(performSaved(savedBody({.category = GetParam()})), tracked);
  expectTotalsLeftAlone();
  EXPECT_THAT(phone_.notifications.told(), ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at "
                                                       "Carrefour (" +
                                                       GetParam() + ")"));
  expectReloadedAndDrained();
}

INSTANTIATE_TEST_SUITE_P(Categories, InAnExcludedCategory,
                         ::testing::Values("__system_transfer__", "Credit Card Settlement"));

TEST_F(AnAddedExpense, IsCountedInAnExcludedCategoryOfAnotherCase) {
  performSaved(savedBody({.category = "credit card settlement"}));
  EXPECT_THAT(totals(), ElementsAre("150.0", "1", "150.0"));
}

TEST_F(AnAddedExpense, IsTrackedWhenSavedWithAReason) {
  EXPECT_EQ(performSaved(R"({"saved":true,"reason":"declined","expense":{"id":"e",)"
                         R"("description":"d","amount":1,"category":"c","expense_date":"x"}})"),
            "Tracked EGP\u00a01.00 at d");
}

TEST_F(AnAddedExpense, HasItsAmountFormattedAgainForTheDialog) {
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

TEST_F(AnAddedExpense, GetsTheSameAnswerWithoutNotifications) {
  phone_.notifications.setStatus(platform::UNAuthorizationStatus::denied);
  EXPECT_EQ(performSaved(savedBody()), tracked);
  EXPECT_THAT(phone_.notifications.told(), IsEmpty());
  expectReloadedAndDrained();
}

TEST_F(AnAddedExpense, RetriesThreeQueuedTextsAtMost) {
  SharedStore store = phone_.openStore();
  PendingSmsQueue::save({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")},
                        store);
  phone_.session.willAnswer(savedBody());
  for (int item = 0; item < 3; ++item) phone_.session.willAnswer(notSavedBody);
  EXPECT_EQ(perform(), tracked);
  EXPECT_EQ(testkit::idsAndCounts(queued()), std::vector<std::string>{"D:0"});
}

TEST_F(AnAddedExpense, TakesItsStepsInOrder) {
  performSaved(savedBody());
  expectStepsOfASavedExpenseInOrder();
}

TEST_F(AnAddedExpense, GetsItsAnswerAfterTheDrain) {
  willAnswerThenDrain(savedBody());
  phone_.session.gate().close();
  StartedRun run = addExpense();
  phone_.session.gate().waitForArrivals(1);
  phone_.session.gate().letOneThrough();
  phone_.session.gate().waitForArrivals(2);
  EXPECT_FALSE(run.hasEnded());
  phone_.session.gate().open();
  EXPECT_EQ(run.dialog(), tracked);
}

TEST_F(AnAddedExpense, PrintsNothingOnSuccess) {
  willAnswerThenDrain(savedBody());
  EXPECT_EQ(performCaptured().written, testkit::WrittenOutput{});
}

}  // namespace
}  // namespace kivo
