// The order of a drain's steps, its lock, and the queue after a cancelled drain.
#include <chrono>

#include "testkit/backend_answers.h"
#include "unit/queue/a_drain.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using platform::HTTPURLResponse;
using platform::URLAnswer;
using platform::URLRequest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::notSavedBody;
using testkit::queuedItem;
using testkit::savedBody;
using testkit::TestPhone;

constexpr double startSeconds = 1769850307;  // TestPhone::start

// The order of its steps.

TEST_F(ADrain, FinishesAnItemBeforeItBeginsTheNext) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C")});
  willAnswer({savedBody(), notSavedBody, savedBody()});
  drain();
  EXPECT_THAT(phone_.log.names(), ElementsAre("exchange", "settings", "notification", "exchange",
                                              "exchange", "settings", "notification"));
}

TEST_F(ADrain, SendsOneRequestAtATime) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C")});
  willAnswer({notSavedBody, notSavedBody, notSavedBody});
  phone_.session.gate().close();
  auto running = testkit::executor().start(task(3, store_));
  for (std::size_t sent = 1; sent <= 3; ++sent) {
    phone_.session.gate().waitForArrivals(sent);
    EXPECT_EQ(phone_.session.requests().size(), sent);
    EXPECT_FALSE(running.waitFor(0ms));
    phone_.session.gate().letOneThrough();
  }
  running.wait();
  EXPECT_EQ(phone_.session.mostAtOnce(), 1u);
}

TEST_F(ADrain, WaitsForANotificationBeforeItSendsTheNextItem) {
  queue({queuedItem("A"), queuedItem("B")});
  willAnswer({savedBody(), notSavedBody});
  phone_.notifications.addGate().close();
  auto running = testkit::executor().start(task(3, store_));
  phone_.notifications.addGate().waitForArrivals(1);
  EXPECT_EQ(phone_.session.requests().size(), 1u);
  phone_.notifications.addGate().open();
  running.wait();
  EXPECT_EQ(phone_.session.requests().size(), 2u);
}

TEST_F(ADrain, WritesTheQueueOnlyAtItsEnd) {
  queue({queuedItem("A"), queuedItem("B")});
  const auto before = phone_.text(StoreKeys::pendingSmsQueue);
  willAnswer({notSavedBody, savedBody()});
  drain();
  for (const auto& event : phone_.log.events()) {
    EXPECT_EQ(testkit::textIn(event.store, StoreKeys::pendingSmsQueue), before)
        << "at " << event.what;
  }
}

TEST_F(ADrain, OverwritesItemsThatAnotherRunEnqueuesMeanwhile) {
  queue({queuedItem("A")});
  phone_.session.willDo([](const URLRequest&) {
    SharedStore other = TestPhone::openStore();
    PendingSmsQueue::enqueue(queuedItem("new"), other);
    return URLAnswer{.data = notSavedBody, .response = HTTPURLResponse{.statusCode = 200}};
  });
  drain();
  EXPECT_THAT(queued(), IsEmpty());
}

// The lock.

TEST_F(ADrain, HoldsTheLockFromStartToEnd) {
  queue({queuedItem("A")});
  willAnswer({savedBody()});
  drain();
  for (const auto& event : phone_.log.events()) {
    EXPECT_EQ(testkit::floatIn(event.store, StoreKeys::smsQueueDrainLock), startSeconds)
        << "at " << event.what;
  }
  EXPECT_EQ(lock(), 0.0);
}

TEST_F(ADrain, SavesTheQueueBeforeItFreesTheLock) {
  queue({queuedItem("A"), queuedItem("B")});
  willAnswer({notSavedBody});
  whenTheLockBecomes("= 0",
                     "INSERT INTO defaults SELECT 'queueAtRelease', value FROM defaults "
                     "WHERE key = 'pendingSmsQueue'");
  drain(1);
  EXPECT_EQ(phone_.contents().at("queueAtRelease"), phone_.contents().at("pendingSmsQueue"));
}

TEST_F(ADrain, LoadsTheQueueAfterItTakesTheLock) {
  queue({queuedItem("A")});
  willAnswer({notSavedBody});
  whenTheLockBecomes("> 0",
                     "UPDATE defaults SET value = replace(value, '\"A\"', '\"B\"') "
                     "WHERE key = 'pendingSmsQueue'");
  drain();
  EXPECT_THAT(phone_.session.sent("idempotency_key"), ElementsAre("B"));
}

TEST_F(ADrain, DoesNothingWhileTheLockIsHeld) {
  queue({queuedItem("A")});
  setLock(startSeconds - 29.9);
  const auto before = phone_.contents();
  drain();
  EXPECT_EQ(phone_.contents(), before);
  EXPECT_THAT(phone_.log.names(), IsEmpty());
}

TEST_F(ADrain, TakesALockThatIsThirtySecondsOld) {
  queue({queuedItem("A")});
  setLock(startSeconds - 30.0);
  willAnswer({notSavedBody});
  drain();
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_EQ(lock(), 0.0);
}

TEST_F(ADrain, LosesItsLockWhenItRunsLongerThanThirtySeconds) {
  queue({queuedItem("A"), queuedItem("B")});
  std::vector<bool> taken;
  for (const auto duration : {29'900ms, 100ms}) {
    phone_.session.willDo([&, duration](const URLRequest&) {
      phone_.clock.advance(duration);
      SharedStore other = TestPhone::openStore();
      taken.push_back(SmsQueueDrainer::tryAcquireLock(other));
      return URLAnswer{.data = notSavedBody, .response = HTTPURLResponse{.statusCode = 200}};
    });
  }
  drain();
  EXPECT_THAT(taken, ElementsAre(false, true));
  EXPECT_EQ(lock(), 0.0) << "and frees it all the same";
}

TEST_F(ADrain, RepeatsItemsOfASlowerDrain) {
  queue({queuedItem("A")});
  willAnswer({notSavedBody, notSavedBody});
  phone_.session.gate().close();
  auto slow = testkit::executor().start(task(3, store_));
  phone_.session.gate().waitForArrivals(1);
  phone_.clock.advance(30s);
  SharedStore other = phone_.openStore();
  auto second = testkit::executor().start(task(3, other));
  phone_.session.gate().waitForArrivals(2);
  phone_.session.gate().open();
  slow.wait();
  second.wait();
  EXPECT_THAT(phone_.session.sent("idempotency_key"), ElementsAre("A", "A"));
  EXPECT_THAT(queued(), IsEmpty());
}

TEST_F(ADrain, DoesNothingWhileAnotherDrainRuns) {
  queue({queuedItem("A")});
  willAnswer({notSavedBody});
  phone_.session.gate().close();
  auto first = testkit::executor().start(task(3, store_));
  phone_.session.gate().waitForArrivals(1);
  SharedStore other = phone_.openStore();
  testkit::await(task(3, other));
  EXPECT_EQ(phone_.session.requests().size(), 1u);
  phone_.session.gate().open();
  first.wait();
}

using TheDrainLock = ADrain;

TEST_F(TheDrainLock, IsFreeWhenItWasNeverTaken) {
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
  EXPECT_EQ(lock(), startSeconds);
}

TEST_F(TheDrainLock, IsFreeAtZero) {
  setLock(0);
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
}

TEST_F(TheDrainLock, HasAnAgeWithFractions) {
  phone_.clock.advance(250ms);
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
  EXPECT_EQ(lock(), startSeconds + 0.25);
}

TEST_F(TheDrainLock, IsHeldUntilItIsThirtySecondsOld) {
  setLock(startSeconds);
  phone_.clock.advance(29'900ms);
  EXPECT_FALSE(SmsQueueDrainer::tryAcquireLock(store_));
  EXPECT_EQ(lock(), startSeconds) << "nothing is written";
  phone_.clock.advance(100ms);
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
  EXPECT_EQ(lock(), startSeconds + 30);
}

TEST_F(TheDrainLock, ExpiresThirtySecondsAfterATimeInTheFuture) {
  setLock(startSeconds + 3600);
  EXPECT_FALSE(SmsQueueDrainer::tryAcquireLock(store_));
  phone_.clock.advance(1h + 29s);
  EXPECT_FALSE(SmsQueueDrainer::tryAcquireLock(store_));
  phone_.clock.advance(1s);
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
}

TEST_F(TheDrainLock, IsFreeWhenItIsStoredAsText) {
  phone_.put(StoreKeys::smsQueueDrainLock, std::to_string(startSeconds));
  EXPECT_TRUE(SmsQueueDrainer::tryAcquireLock(store_));
}

// Cancelling.

TEST_F(ADrain, CountsItsItemsAsFailedWhenCancelled) {
  queue({queuedItem("A"), queuedItem("B"), queuedItem("C"), queuedItem("D")});
  willAnswer({notSavedBody, notSavedBody, notSavedBody});
  phone_.session.gate().close();
  auto running = testkit::executor().start(task(3, store_));
  phone_.session.gate().waitForArrivals(1);
  phone_.session.gate().letOneThrough();
  phone_.session.gate().waitForArrivals(2);
  running.cancel();
  running.wait();
  EXPECT_THAT(queued(), ElementsAre("D:0", "B:1", "C:1"));
  EXPECT_EQ(lock(), 0.0);
}

TEST_F(ADrain, PostsItsNotificationWhenCancelled) {
  queue({queuedItem("A"), queuedItem("B")});
  willAnswer({savedBody(), savedBody()});
  phone_.notifications.settingsGate().close();
  auto running = testkit::executor().start(task(3, store_));
  phone_.notifications.settingsGate().waitForArrivals(1);
  running.cancel();
  phone_.notifications.settingsGate().open();
  running.wait();
  EXPECT_EQ(phone_.notifications.told().size(), 1u);
  EXPECT_THAT(queued(), ElementsAre("B:1"));
}

}  // namespace
}  // namespace kivo
