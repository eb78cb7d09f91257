// The items that a drain sends, their outcomes, and its notifications.
#include "queue/sms_queue_drainer.h"

#include <chrono>

#include "testkit/backend_answers.h"
#include "testkit/written_output.h"
#include "unit/queue/a_drain.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::queuedItem;
using testkit::savedBody;

// The order of the items.

TEST_F(ADrain, SendsTheOldestItemsInOrderAndNoMoreThanAsked) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  willAnswer({notSavedBody, notSavedBody, notSavedBody});
  drain(3);
  EXPECT_THAT(phone_.session.sent("idempotency_key"), ElementsAre("A", "B", "C"));
  EXPECT_THAT(queued(), ElementsAre("D:0"));
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "1");
}

TEST_F(ADrain, SendsAllOfAShorterQueue) {
  queue({queuedItem("A")});
  willAnswer({notSavedBody});
  drain(3);
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueue), "[]");
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "0");
}

TEST_F(ADrain, SendsItsOwnDateAndKeyWithCurrentCredentials) {
  queue({queuedItem("A")});
  willAnswer({notSavedBody});
  drain();
  const auto request = phone_.session.onlyRequest();
  EXPECT_EQ(request.httpBody,
            R"({"sms_text":"text A","user_id":"user-now","expense_date":"2026-01-30",)"
            R"("idempotency_key":"A"})");
  EXPECT_EQ(request.url.host, "now.example");
}

TEST_F(ADrain, SendsTheSameKeyAndDateAtEveryAttempt) {
  queue({queuedItem("A")});
  for (int attempt = 0; attempt < 3; ++attempt) {
    willFail(1);
    drain();
    phone_.clock.advance(24h);
  }
  EXPECT_THAT(phone_.session.sent("idempotency_key"), ElementsAre("A", "A", "A"));
  EXPECT_THAT(phone_.session.sent("expense_date"),
              ElementsAre("2026-01-30", "2026-01-30", "2026-01-30"));
  EXPECT_THAT(queued(), ElementsAre("A:3"));
}

TEST_F(ADrain, PutsFailedItemsAtTheBack) {
  queue({queuedItem("1"), queuedItem("2", 4), queuedItem("3"), queuedItem("4"), queuedItem("5")});
  willFail(3);
  drain(3);
  EXPECT_EQ(phone_.session.requests().size(), 3u);
  EXPECT_THAT(queued(), ElementsAre("4:0", "5:0", "1:1", "2:5", "3:1"));
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "5");
}

TEST_F(ADrain, ChangesOnlyTheRetryCountOfAFailedItem) {
  PendingSmsItem item = queuedItem("A", 2);
  item.source = "apple_pay";
  item.amount = 12.5;
  item.merchant = "مقهى";
  queue({item});
  willFail(1);
  drain();
  item.retryCount = 3;
  EXPECT_THAT(PendingSmsQueue::load(store_), ElementsAre(item));
}

TEST_F(ADrain, CountsEveryKindOfFailure) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  willFail(1);
  phone_.session.willAnswer(savedBody(), 201);
  willAnswer({"<html>", R"({"saved":"yes"})"});
  drain(4);
  EXPECT_THAT(queued(), ElementsAre("A:1", "B:1", "C:1", "D:1"));
}

TEST_F(ADrain, ContinuesAfterAFailure) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C")});
  willFail(1);
  willAnswer({notSavedBody, notSavedBody});
  drain();
  EXPECT_THAT(queued(), ElementsAre("A:1"));
}

TEST_F(ADrain, DropsAnItemThatFailedTenTimesWithoutSendingIt) {
  queue({queuedItem("A", 10), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  willAnswer({notSavedBody, notSavedBody});
  drain(3);
  EXPECT_THAT(phone_.session.sent("idempotency_key"), ElementsAre("B", "C"))
      << "a dropped item uses up its place";
  EXPECT_THAT(queued(), ElementsAre("D:0"));
  EXPECT_EQ(phone_.notifications.told().size(), 0u);
}

TEST_F(ADrain, RetriesAnItemThatFailedNineTimes) {
  queue({queuedItem("A", 9)});
  willFail(1);
  drain();
  EXPECT_THAT(queued(), ElementsAre("A:10"));
  drain();
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_EQ(phone_.session.requests().size(), 1u);
}

TEST_F(ADrain, SavesTheQueueAndFreesTheLockWhenItDropsAll) {
  queue({queuedItem("A", 10), queuedItem("B", 11), queuedItem("C", 1000)});
  phone_.put(StoreKeys::pendingSmsQueueCount, "wrong");
  drain(3);
  EXPECT_THAT(phone_.session.requests(), IsEmpty());
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueue), "[]");
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "0");
  EXPECT_EQ(lock(), 0.0);
}

TEST_F(ADrain, RemovesEveryItemWithAHandledId) {
  PendingSmsItem twin = queuedItem("A");
  twin.smsText = "another text";
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D"), twin});
  willAnswer({notSavedBody, notSavedBody, notSavedBody});
  drain(3);
  EXPECT_THAT(queued(), ElementsAre("D:0"));
}

TEST_F(ADrain, SendsBothItemsOfOneIdInItsBatch) {
  queue({queuedItem("A", 1), queuedItem("A", 5), queuedItem("B")});
  willFail(2);
  drain(2);
  EXPECT_THAT(queued(), ElementsAre("B:0", "A:2", "A:6"));
}

TEST_F(ADrain, SavesTheQueueUnchangedWithALimitOfZero) {
  queue({queuedItem("A"), queuedItem("B", 10)});
  phone_.put(StoreKeys::pendingSmsQueueCount, "wrong");
  drain(0);
  EXPECT_THAT(phone_.session.requests(), IsEmpty());
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:10"));
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), "2");
  EXPECT_EQ(lock(), 0.0);
}

TEST_F(ADrain, WritesOnlyTheLockWhenTheQueueIsEmpty) {
  auto expected = phone_.contents();
  drain();
  expected["smsQueueDrainLock"] = 0.0;
  EXPECT_EQ(phone_.contents(), expected);
}

TEST_F(ADrain, LeavesAnUnreadableQueueUnchanged) {
  phone_.put(StoreKeys::pendingSmsQueue, "broken");
  drain();
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueue), "broken");
  EXPECT_EQ(phone_.text(StoreKeys::pendingSmsQueueCount), std::nullopt);
  EXPECT_EQ(lock(), 0.0);
}

// Notifications.

TEST_F(ADrain, AnnouncesEveryTypeExceptIncomeAsAnExpense) {
  for (const std::optional<std::string>& type :
       {std::optional<std::string>(), std::optional<std::string>("expense"),
        std::optional<std::string>("transfer"), std::optional<std::string>("Income")}) {
    EXPECT_EQ(toldOf(savedBody({.type = type})).back(),
              "💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (Groceries)");
  }
  EXPECT_EQ(phone_.notifications.told().size(), 4u);
}

TEST_F(ADrain, AnnouncesIncomeAsReceived) {
  EXPECT_THAT(toldOf(savedBody({.type = "income", .description = "Employer"})),
              ElementsAre("💰 Income Received | EGP\u00a0150.00 from Employer (Groceries)"));
}

TEST_F(ADrain, AnnouncesAnExcludedCategory) {
  EXPECT_THAT(
      toldOf(savedBody({.category = "__system_transfer__"})),
      ElementsAre("💸 Expense Tracked | EGP\u00a0150.00 at Carrefour (__system_transfer__)"));
}

TEST_F(ADrain, FormatsAmountsInTheCurrencyOfTheStore) {
  phone_.put(StoreKeys::currency, "USD");
  EXPECT_THAT(toldOf(savedBody({.amount = -12.5})),
              ElementsAre("💸 Expense Tracked | $12.50 at Carrefour (Groceries)"));
}

TEST_F(ADrain, SilentlyRemovesATextThatIsNotSaved) {
  EXPECT_THAT(toldOf(notSavedBody), IsEmpty());
  EXPECT_THAT(toldOf(testkit::declinedBody), IsEmpty());
  EXPECT_THAT(toldOf(testkit::savedWithoutExpenseBody), IsEmpty());
  EXPECT_THAT(toldOf(R"({"saved":false,"expense":{"id":"e","description":"d","amount":1,)"
                     R"("category":"c","expense_date":"x"}})"),
              IsEmpty());
}

TEST_F(ADrain, PrintsNothingInAnyCase) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C")});
  willFail(1);
  willAnswer({"<html>", savedBody()});
  const auto written = testkit::writtenBy([&] { drain(); });
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.err, "");
}

TEST_F(ADrain, ContinuesWhenNotificationsAreRefusedOrForbidden) {
  phone_.notifications.willRefuse();
  queue({queuedItem("A"), queuedItem("B")});
  willAnswer({savedBody(), savedBody()});
  drain(1);
  phone_.notifications.setStatus(platform::UNAuthorizationStatus::denied);
  drain(1);
  EXPECT_THAT(queued(), IsEmpty());
}

TEST_F(ADrain, DoesNotChangeTotalsOrWidget) {
  toldOf(savedBody({.type = "expense"}));
  EXPECT_EQ(phone_.text(StoreKeys::todayDateKey), std::nullopt);
  EXPECT_EQ(phone_.text(StoreKeys::todayTotal), std::nullopt);
  EXPECT_EQ(phone_.text(StoreKeys::todayCount), std::nullopt);
  EXPECT_EQ(phone_.text(StoreKeys::monthlyTotal), std::nullopt);
  EXPECT_EQ(phone_.widget.reloads(), 0);
}

using ADrainDeathTest = ADrain;

TEST_F(ADrainDeathTest, AbortsWithANegativeLimit) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testkit::ScopedVariable inside("TMPDIR", phone_.folders.home().string());
  EXPECT_DEATH(drain(-1), "^fatal: a drain was asked");
}

}  // namespace
}  // namespace kivo
