// AddExpenseIntent when the backend cannot be reached, or answers with an error.
#include <limits>

#include "unit/intents/an_added_expense.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using testkit::queuedItem;
using testkit::savedBody;

const std::string savedOffline = "Saved offline - will process when connected";

using AnAddedExpenseThatFails = AnAddedExpense;

TEST_F(AnAddedExpenseThatFails, IsQueuedWithAmountAndMerchant) {
  phone_.put(StoreKeys::currency, "USD");
  EXPECT_EQ(performFailing(12.5, " Cafe \n").dialog, savedOffline);
  const PendingSmsItem expected{.id = phone_.session.sent("idempotency_key").at(0),
                                .smsText = phone_.session.sent("sms_text").at(0),
                                .expenseDate = "2026-01-31",
                                .queuedAt = "2026-01-31T09:05:07Z",
                                .retryCount = 0,
                                .source = "apple_pay",
                                .amount = 12.5,
                                .merchant = " Cafe \n"};
  EXPECT_EQ(expected.smsText, "Paid 12.5 USD at  Cafe \n");
  EXPECT_THAT(queued(), ElementsAre(queuedItem("waiting"), expected));
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "2");
}

TEST_F(AnAddedExpenseThatFails, HasTheDateOfItsRequestAndTheTimeItWasQueued) {
  phone_.clock.set(testkit::utc(2026, 1, 31, 23, 59, 50));
  phone_.session.willDo([this](const platform::URLRequest&) -> platform::URLAnswer {
    phone_.clock.advance(std::chrono::seconds(15));
    throw platform::URLError(platform::URLError::Code::timedOut);
  });
  performCaptured();
  EXPECT_EQ(queued().back().expenseDate, "2026-01-31");
  EXPECT_EQ(queued().back().queuedAt, "2026-02-01T00:00:05Z");
}

TEST_F(AnAddedExpenseThatFails, PrintsOneLineWithoutSecrets) {
  phone_.put(StoreKeys::userId, "MARK-user");
  const auto transport = performFailing(150.25, "MARK").written;
  EXPECT_EQ(transport.out, std::string("AddExpenseIntent error: ") +
                               platform::URLError(platform::URLError::Code::timedOut).what() +
                               "\n");
  EXPECT_EQ(transport.err, "");

  phone_.session.willAnswer(savedBody(), 503);
  EXPECT_EQ(
      performCaptured(150.25, "MARK").written.out,
      "AddExpenseIntent error: Error Domain=SMSExtraction Code=500 \"Failed to extract SMS\"\n");

  phone_.session.willAnswer(R"({"MARK":"150.25"})");
  EXPECT_EQ(performCaptured(150.25, "MARK").written.out,
            "AddExpenseIntent error: DecodingError keyNotFound at saved\n");
}

TEST_F(AnAddedExpenseThatFails, IsQueuedBeforeTheNotification) {
  performFailing();
  EXPECT_THAT(phone_.log.names(), ElementsAre("exchange", "settings", "notification"));
  EXPECT_EQ(testkit::textIn(phone_.log.first("settings").store, StoreKeys::pendingSmsQueueCount),
            "2");
}

TEST_F(AnAddedExpenseThatFails, DoesNotReloadCountOrDrain) {
  performFailing();
  EXPECT_EQ(phone_.widget.reloads(), 0);
  expectTotalsLeftAlone();
  EXPECT_EQ(phone_.session.requests().size(), 1u);
  EXPECT_EQ(phone_.number(StoreKeys::smsQueueDrainLock), std::nullopt);
}

TEST_F(AnAddedExpenseThatFails, HasTheSameTextsAsABankSMS) {
  EXPECT_EQ(performFailing().dialog, savedOffline);
  phone_.session.willAnswer("", 500);
  std::string dialogOfTheSMS;
  testkit::writtenBy([&] { dialogOfTheSMS = StartedRun("Paid 150").dialog(); });
  EXPECT_EQ(dialogOfTheSMS, savedOffline);
  const std::string told = "📡 Expense Saved Offline | Will be processed when you're back online";
  EXPECT_THAT(phone_.notifications.told(), ElementsAre(told, told));
}

TEST_F(AnAddedExpenseThatFails, IsRetriedUnderTheSameKeyAfterTheNextSuccess) {
  performFailing();
  for (int request = 0; request < 3; ++request) phone_.session.willAnswer(savedBody());
  phone_.clock.advance(std::chrono::hours(24));
  EXPECT_EQ(perform(7, "Bakery"), "Tracked EGP\u00a0150.00 at Carrefour");
  const auto keys = phone_.session.sent("idempotency_key");
  EXPECT_THAT(phone_.session.sent("sms_text"),
              ElementsAre("Paid 25.0 EGP at Cafe", "Paid 7.0 EGP at Bakery", "text waiting",
                          "Paid 25.0 EGP at Cafe"));
  EXPECT_EQ(keys.at(3), keys.at(0));
  EXPECT_EQ(phone_.session.sent("expense_date").at(3), "2026-01-31");
  EXPECT_EQ(phone_.text(StoreKeys::todayTotal), "150.0") << "a drained expense is not counted";
}

// JSON cannot express it, so the whole list is lost: an accepted loss.
TEST_F(AnAddedExpenseThatFails, EmptiesTheQueueWhenItsAmountIsInfinite) {
  const auto output = performFailing(std::numeric_limits<double>::infinity());
  EXPECT_EQ(output.dialog, savedOffline);
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueue), "[]");
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "2");
}

TEST_F(AnAddedExpenseThatFails, IsQueuedWhenItIsCancelled) {
  phone_.session.willAnswer(savedBody());
  phone_.session.gate().close();
  const auto written = testkit::writtenBy([&] {
    StartedRun run = addExpense();
    phone_.session.gate().waitForArrivals(1);
    run.cancel();
  });
  EXPECT_EQ(written.out,
            "AddExpenseIntent error: URLError cancelled: The exchange was cancelled\n");
  EXPECT_EQ(queued().back().smsText, "Paid 25.0 EGP at Cafe");
}

}  // namespace
}  // namespace kivo
