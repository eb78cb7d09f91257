// A test phone on which a user is signed in and one text is queued, with checks of the effects of
// an intent.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "queue/pending_sms_queue.h"
#include "testkit/backend_answers.h"
#include "testkit/queued_items.h"
#include "testkit/test_phone.h"

namespace kivo {

class ASignedInPhone : public ::testing::Test {
 protected:
  ASignedInPhone() {
    SharedStore store = phone_.openStore();
    PendingSmsQueue::save({testkit::queuedItem("waiting")}, store);
    before_ = phone_.contents();
  }

  /// The backend will answer `body`, and will not save the retried text of the queue.
  void willAnswerThenDrain(std::string body) {
    phone_.session.willAnswer(std::move(body));
    phone_.session.willAnswer(testkit::notSavedBody);
  }
  static std::vector<PendingSmsItem> queued() {
    return PendingSmsQueue::load(testkit::TestPhone::openStore());
  }

  /// Expects that nothing was sent, posted, counted or queued.
  void expectNothingDone() {
    EXPECT_THAT(phone_.log.names(), ::testing::IsEmpty());
    EXPECT_EQ(phone_.contents(), before_);
  }
  /// Expects one exchange with the backend and no other effect.
  void expectNothingButTheExchange() {
    EXPECT_THAT(phone_.log.names(), ::testing::ElementsAre("exchange"));
    EXPECT_EQ(phone_.contents(), before_);
  }
  std::vector<std::optional<std::string>> totals() {
    return {phone_.text(StoreKeys::todayTotal), phone_.text(StoreKeys::todayCount),
            phone_.text(StoreKeys::monthlyTotal)};
  }
  void expectTotalsLeftAlone() {
    EXPECT_THAT(totals(), ::testing::ElementsAre(std::nullopt, std::nullopt, std::nullopt));
  }
  void expectReloadedAndDrained() {
    EXPECT_EQ(phone_.widget.reloads(), 1);
    EXPECT_THAT(queued(), ::testing::IsEmpty());
    EXPECT_EQ(phone_.session.requests().size(), 2u);
  }
  /// Expects these steps: an expense of 150 is counted, the widget reloads, a notification is
  /// posted, the queued text is retried.
  void expectStepsOfASavedExpenseInOrder() {
    ASSERT_THAT(phone_.log.names(), ::testing::ElementsAre("exchange", "reload", "settings",
                                                           "notification", "exchange"));
    const auto events = phone_.log.events();
    EXPECT_EQ(testkit::textIn(events[0].store, StoreKeys::todayTotal), std::nullopt);
    EXPECT_EQ(testkit::textIn(events[1].store, StoreKeys::todayTotal), "150.0");
    EXPECT_EQ(testkit::textIn(events[1].store, StoreKeys::monthlyTotal), "150.0");
    EXPECT_EQ(testkit::floatIn(events[3].store, StoreKeys::smsQueueDrainLock), std::nullopt);
    EXPECT_NE(testkit::floatIn(events[4].store, StoreKeys::smsQueueDrainLock), std::nullopt);
  }

  testkit::TestPhone phone_;
  testkit::StoreContents before_;
};

}  // namespace kivo
