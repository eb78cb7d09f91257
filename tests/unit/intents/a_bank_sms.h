// A bank's message, processed on a test's phone where one text waits in the queue. Asserts nothing
// but what a helper says.
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
#include "unit/intents/started_run.h"

namespace kivo {

class ABankSMS : public ::testing::Test {
 protected:
  ABankSMS() {
    SharedStore store = phone_.openStore();
    PendingSmsQueue::save({testkit::queuedItem("waiting")}, store);
    before_ = phone_.contents();
  }

  static std::string perform(std::string text = "Paid 150 at Carrefour") {
    return StartedRun(std::move(text)).dialog();
  }
  std::string performAnswered(std::string body) {
    phone_.session.willAnswer(std::move(body));
    return perform();
  }
  /// As above, and the queued text is sent again to no avail.
  std::string performSaved(std::string body) {
    phone_.session.willAnswer(std::move(body));
    phone_.session.willAnswer(testkit::notSavedBody);
    return perform();
  }
  /// Nothing was sent, told, counted or queued.
  void expectNothingDone() {
    EXPECT_THAT(phone_.log.names(), ::testing::IsEmpty());
    EXPECT_EQ(phone_.contents(), before_);
  }
  /// The backend was asked and nothing else happened.
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
    EXPECT_THAT(PendingSmsQueue::load(phone_.openStore()), ::testing::IsEmpty());
    EXPECT_EQ(phone_.session.requests().size(), 2u);
  }

  testkit::TestPhone phone_;
  testkit::StoreContents before_;
};

}  // namespace kivo
