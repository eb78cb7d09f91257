// A drain of the queue of a test phone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "queue/pending_sms_queue.h"
#include "queue/sms_queue_drainer.h"
#include "testkit/queued_items.h"
#include "testkit/raw_store.h"
#include "testkit/task_runner.h"
#include "testkit/test_phone.h"

namespace kivo {

class ADrain : public ::testing::Test {
 protected:
  static void queue(const std::vector<PendingSmsItem>& items) {
    SharedStore store = testkit::TestPhone::openStore();
    PendingSmsQueue::save(items, store);
  }
  static std::vector<std::string> queued() {
    return testkit::idsAndCounts(PendingSmsQueue::load(testkit::TestPhone::openStore()));
  }
  static platform::Task<void> task(int maxItems, SharedStore& store) {
    return SmsQueueDrainer::drain(maxItems, store, "user-now", "https://now.example");
  }
  void drain(int maxItems = 3) { testkit::await(task(maxItems, store_)); }
  void willAnswer(const std::vector<std::string>& bodies) {
    for (const auto& body : bodies) phone_.session.willAnswer(body);
  }
  void willFail(int times) {
    for (int time = 0; time < times; ++time) {
      phone_.session.willFail(platform::URLError(platform::URLError::Code::timedOut));
    }
  }
  void setLock(double takenAt) { phone_.put(StoreKeys::smsQueueDrainLock, takenAt); }
  /// Frees the lock; once its value is next `comparison`, `statement` changes the store with it.
  void whenTheLockBecomes(const std::string& comparison, const std::string& statement) {
    setLock(0);
    testkit::RawStore(phone_.folders.storeFile())
        .run(
            "CREATE TRIGGER at_lock AFTER UPDATE ON defaults WHEN new.key = 'smsQueueDrainLock' "
            "AND new.value " +
            comparison + " BEGIN " + statement + "; END");
  }
  std::optional<double> lock() { return phone_.number(StoreKeys::smsQueueDrainLock); }
  /// Drains a queue of one item, which the backend answers with `body`; returns the notifications.
  std::vector<std::string> toldOf(const std::string& body) {
    queue({testkit::queuedItem("A")});
    willAnswer({body});
    drain();
    EXPECT_THAT(queued(), ::testing::IsEmpty());
    return phone_.notifications.told();
  }

  testkit::TestPhone phone_;
  SharedStore store_ = phone_.openStore();
};

}  // namespace kivo
