// Concurrent and cancelled runs.
#include <algorithm>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "queue/pending_sms_queue.h"
#include "testkit/backend_answers.h"
#include "testkit/queued_items.h"
#include "testkit/test_phone.h"
#include "testkit/written_output.h"
#include "unit/intents/started_run.h"

namespace kivo {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using testkit::idsAndCounts;
using testkit::notSavedBody;
using testkit::queuedItem;
using testkit::savedBody;
using testkit::TestPhone;

const std::string savedOffline = "Saved offline - will process when connected";
const std::string tracked = "Tracked EGP\u00a0150.00 at Carrefour";

class Runs : public ::testing::Test {
 protected:
  void queue(const std::vector<PendingSmsItem>& items) {
    SharedStore store = phone_.openStore();
    PendingSmsQueue::save(items, store);
  }
  static std::vector<PendingSmsItem> queued() {
    return PendingSmsQueue::load(TestPhone::openStore());
  }

  TestPhone phone_;
};

using TwoRuns = Runs;

TEST_F(TwoRuns, ExchangeWithTheBackendInParallel) {
  phone_.session.willAnswer(notSavedBody);
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun one("one");
  StartedRun other("other");
  phone_.session.gate().waitForArrivals(2);
  EXPECT_EQ(phone_.session.mostAtOnce(), 2u);
  phone_.session.gate().open();
  EXPECT_EQ(one.dialog(), "SMS ignored - not a transaction");
  EXPECT_EQ(other.dialog(), "SMS ignored - not a transaction");
}

TEST_F(TwoRuns, CanEndInTheOppositeOrder) {
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer(notSavedBody);
  phone_.notifications.addGate().close();
  StartedRun early("early");
  phone_.notifications.addGate().waitForArrivals(1);
  StartedRun late("late");
  EXPECT_EQ(late.dialog(), "SMS ignored - not a transaction");
  EXPECT_FALSE(early.hasEnded());
  phone_.notifications.addGate().open();
  EXPECT_EQ(early.dialog(), tracked);
}

TEST_F(TwoRuns, HaveDifferentKeysForTheSameText) {
  phone_.session.willAnswer(notSavedBody);
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun one("the same");
  StartedRun other("the same");
  phone_.session.gate().waitForArrivals(2);
  phone_.session.gate().open();
  const auto keys = phone_.session.sent("idempotency_key");
  EXPECT_NE(keys[0], keys[1]);
}

TEST_F(TwoRuns, CountBothExpensesOrOnlyTheLastWritten) {
  phone_.session.willAnswer(savedBody({.amount = 1}));
  phone_.session.willAnswer(savedBody({.amount = 10}));
  phone_.session.gate().close();
  {
    StartedRun one("one");
    StartedRun other("other");
    phone_.session.gate().waitForArrivals(2);
    phone_.session.gate().open();
  }
  EXPECT_THAT(phone_.text(StoreKeys::monthlyTotal), AnyOf("1.0", "10.0", "11.0"));
  EXPECT_EQ(phone_.widget.reloads(), 2);
  EXPECT_EQ(phone_.notifications.told().size(), 2u);
}

TEST_F(TwoRuns, DrainTheQueueOnce) {
  queue({queuedItem("A")});
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun drainer("one");
  phone_.session.gate().waitForArrivals(1);
  phone_.session.gate().letOneThrough();
  phone_.session.gate().waitForArrivals(2);  // the drain's request

  phone_.session.willAnswer(savedBody());
  StartedRun other("other");
  phone_.session.gate().waitForArrivals(3);
  phone_.session.gate().open();
  EXPECT_EQ(other.dialog(), tracked);
  EXPECT_EQ(drainer.dialog(), tracked);
  const auto keys = phone_.session.sent("idempotency_key");
  EXPECT_EQ(std::count(keys.begin(), keys.end(), "A"), 1);
}

using AnAcceptedLoss = Runs;

TEST_F(AnAcceptedLoss, IncludesATextQueuedWhileAnotherRunDrains) {
  queue({queuedItem("A")});
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun drainer("drainer");
  phone_.session.gate().waitForArrivals(1);
  phone_.session.gate().letOneThrough();
  phone_.session.gate().waitForArrivals(2);  // the queue is loaded

  phone_.session.willAnswer("", 500);
  StartedRun failing("failing");
  phone_.session.gate().waitForArrivals(3);
  failing.cancel();
  EXPECT_EQ(failing.dialog(), savedOffline);
  EXPECT_EQ(queued().size(), 2u);

  phone_.session.gate().open();
  EXPECT_EQ(drainer.dialog(), tracked);
  EXPECT_THAT(queued(), IsEmpty());
}

using ARun = Runs;

TEST_F(ARun, NeverUsesTheMainThread) {
  phone_.session.willAnswer(savedBody());
  EXPECT_EQ(StartedRun("Paid 150").dialog(), tracked);
  EXPECT_THAT(phone_.session.threads(), Not(Contains(std::this_thread::get_id())));
  EXPECT_FALSE(phone_.session.threads().empty());
}

class ACancelledRun : public Runs {
 protected:
  void expectFailurePathDone(StartedRun& run) {
    EXPECT_EQ(run.dialog(), savedOffline);
    ASSERT_EQ(queued().size(), 1u);
    EXPECT_EQ(queued()[0].id, phone_.session.sent("idempotency_key").at(0));
    EXPECT_THAT(phone_.notifications.told(),
                ElementsAre("📡 Expense Saved Offline | Will be processed when you're back online"));
  }
};

TEST_F(ACancelledRun, QueuesItsTextWhenItIsCancelledDuringTheExchange) {
  phone_.session.willAnswer(savedBody());
  phone_.session.gate().close();
  StartedRun run("Paid 150");
  phone_.session.gate().waitForArrivals(1);
  run.cancel();
  expectFailurePathDone(run);
}

TEST_F(ACancelledRun, QueuesItsTextWhenItIsCancelledAtOnce) {
  phone_.session.willAnswer(savedBody());
  phone_.session.gate().close();  // an exchange that ends by the cancellation only
  StartedRun run("Paid 150");
  run.cancel();
  expectFailurePathDone(run);
}

TEST_F(ACancelledRun, WritesItsErrorLine) {
  phone_.session.willAnswer(savedBody());
  phone_.session.gate().close();
  const auto written = testkit::writtenBy([&] {
    StartedRun run("Paid 150");
    phone_.session.gate().waitForArrivals(1);
    run.cancel();
  });
  EXPECT_EQ(written.out,
            "ProcessSMSIntent error: URLError cancelled: The exchange was cancelled\n");
  EXPECT_EQ(written.err, "");
}

TEST_F(ACancelledRun, PostsThatItsTextIsSavedOffline) {
  phone_.session.willAnswer("", 500);
  phone_.notifications.settingsGate().close();
  StartedRun run("Paid 150");
  phone_.notifications.settingsGate().waitForArrivals(1);
  run.cancel();
  phone_.notifications.settingsGate().open();
  expectFailurePathDone(run);
}

TEST_F(ACancelledRun, WaitsForTheCenterToTakeTheNotification) {
  phone_.session.willAnswer("", 500);
  phone_.notifications.addGate().close();
  StartedRun run("Paid 150");
  phone_.notifications.addGate().waitForArrivals(1);
  run.cancel();
  // A later run goes through the same workers, so the cancellation has long been seen by then.
  phone_.session.willAnswer(notSavedBody);
  EXPECT_EQ(StartedRun("another").dialog(), "SMS ignored - not a transaction");
  EXPECT_FALSE(run.hasEnded());
  phone_.notifications.addGate().open();
  expectFailurePathDone(run);
}

TEST_F(ACancelledRun, NotifiesOfASavedExpenseAndFailsItsDrain) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  for (int request = 0; request < 4; ++request) phone_.session.willAnswer(savedBody());
  phone_.notifications.settingsGate().close();
  StartedRun run("Paid 150");
  phone_.notifications.settingsGate().waitForArrivals(1);
  run.cancel();
  phone_.notifications.settingsGate().open();
  EXPECT_EQ(run.dialog(), tracked);
  EXPECT_EQ(phone_.notifications.told().size(), 1u);
  EXPECT_THAT(idsAndCounts(queued()), ElementsAre("D:0", "A:1", "B:1", "C:1"));
  EXPECT_EQ(phone_.number(StoreKeys::smsQueueDrainLock), 0.0);
  EXPECT_EQ(phone_.text(StoreKeys::todayCount), "1");
}

TEST_F(ACancelledRun, KeepsTheProgressOfItsDrain) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C")});
  for (int request = 0; request < 4; ++request) phone_.session.willAnswer(savedBody());
  phone_.session.gate().close();
  StartedRun run("Paid 150");
  for (std::size_t request = 1; request <= 2; ++request) {
    phone_.session.gate().waitForArrivals(request);
    phone_.session.gate().letOneThrough();
  }
  phone_.session.gate().waitForArrivals(3);
  run.cancel();
  EXPECT_EQ(run.dialog(), tracked);
  EXPECT_EQ(phone_.notifications.told().size(), 2u);
  EXPECT_THAT(idsAndCounts(queued()), ElementsAre("B:1", "C:1"));
}

TEST_F(ACancelledRun, ChangesNothingWhenItHasEnded) {
  phone_.session.willAnswer(savedBody());
  StartedRun run("Paid 150");
  EXPECT_EQ(run.dialog(), tracked);
  const auto before = phone_.contents();
  run.cancel();
  EXPECT_EQ(run.dialog(), tracked);
  EXPECT_EQ(phone_.contents(), before);
}

TEST_F(ACancelledRun, DoesNotAffectOtherRuns) {
  phone_.session.willAnswer(savedBody());
  phone_.session.willAnswer(notSavedBody);
  phone_.session.gate().close();
  StartedRun cancelled("cancelled");
  phone_.session.gate().waitForArrivals(1);
  StartedRun other("other");
  phone_.session.gate().waitForArrivals(2);
  cancelled.cancel();
  EXPECT_EQ(cancelled.dialog(), savedOffline);
  EXPECT_FALSE(other.hasEnded());
  phone_.session.gate().open();
  EXPECT_EQ(other.dialog(), "SMS ignored - not a transaction");
}

}  // namespace
}  // namespace kivo
