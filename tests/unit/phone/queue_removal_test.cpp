#include "phone/queue_removal.h"

#include <gmock/gmock.h>

#include "queue/pending_sms_queue.h"
#include "testkit/queued_items.h"
#include "testkit/stored_bytes.h"
#include "testkit/test_phone.h"

namespace kivo {
namespace {

using QueueRemoval::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testkit::queuedItem;

class ARemoval : public testing::Test {
 protected:
  ARemoval() { queue({queuedItem("A"), queuedItem("B", 2), queuedItem("C")}); }

  void queue(const std::vector<PendingSmsItem>& items) {
    SharedStore store = phone.openStore();
    PendingSmsQueue::save(items, store);
  }
  Outcome remove(const PendingSmsItem& shown, std::size_t index) {
    SharedStore store = phone.openStore();
    return QueueRemoval::remove(shown, index, store);
  }
  static std::vector<std::string> queued() {
    return testkit::idsAndCounts(PendingSmsQueue::load(testkit::TestPhone::openStore()));
  }

  testkit::TestPhone phone;
};

TEST_F(ARemoval, RemovesTheTextAndUpdatesTheCount) {
  EXPECT_EQ(remove(queuedItem("B", 2), 1), Outcome::removed);
  EXPECT_THAT(queued(), ElementsAre("A:0", "C:0"));
  EXPECT_EQ(phone.text(StoreKeys::pendingSmsQueueCount), "2");
  EXPECT_EQ(phone.number(StoreKeys::smsQueueDrainLock), 0);
}

TEST_F(ARemoval, FindsATextThatMovedUp) {
  queue({queuedItem("B", 2), queuedItem("C")});
  EXPECT_EQ(remove(queuedItem("B", 2), 1), Outcome::removed);
  EXPECT_THAT(queued(), ElementsAre("C:0"));
}

TEST_F(ARemoval, FindsATextThatADrainMovedToTheBack) {
  queue({queuedItem("B", 2), queuedItem("C"), queuedItem("A", 1)});
  EXPECT_EQ(remove(queuedItem("A", 0), 0), Outcome::removed);
  EXPECT_THAT(queued(), ElementsAre("B:2", "C:0"));
}

TEST_F(ARemoval, DoesNotRemoveAnotherTextAtTheSameIndex) {
  EXPECT_EQ(remove(queuedItem("D"), 1), Outcome::gone);
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
  EXPECT_EQ(phone.number(StoreKeys::smsQueueDrainLock), 0);
}

TEST_F(ARemoval, ComparesMoreThanTheIdentifier) {
  PendingSmsItem other = queuedItem("B", 2);
  other.smsText = "another text";
  EXPECT_EQ(remove(other, 1), Outcome::gone);
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
}

TEST_F(ARemoval, RemovesOneOfTwoEqualTexts) {
  queue({queuedItem("A"), queuedItem("B", 1), queuedItem("A", 5)});
  EXPECT_EQ(remove(queuedItem("A", 5), 2), Outcome::removed);
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:1"));
}

TEST_F(ARemoval, LeavesAnUnreadableQueueUnchanged) {
  phone.put(StoreKeys::pendingSmsQueue, "no JSON");
  EXPECT_EQ(remove(queuedItem("A"), 0), Outcome::gone);
  EXPECT_EQ(phone.text(StoreKeys::pendingSmsQueue), "no JSON");
}

TEST_F(ARemoval, IsRefusedWhileADrainHoldsTheLock) {
  const double present = platform::secondsSince1970(platform::Date::now());
  phone.put(StoreKeys::smsQueueDrainLock, present - 29);
  EXPECT_EQ(remove(queuedItem("A"), 0), Outcome::busy);
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
  EXPECT_EQ(phone.number(StoreKeys::smsQueueDrainLock), present - 29);

  phone.put(StoreKeys::smsQueueDrainLock, present - 30);
  EXPECT_EQ(remove(queuedItem("A"), 0), Outcome::removed);
}

TEST_F(ARemoval, ErasesTheTextFromTheFiles) {
  PendingSmsItem told = queuedItem("D");
  told.smsText = "Your card was charged MARKAMOUNT at MARKMERCHANT";
  queue({queuedItem("A"), told});
  const auto files = phone.folders.storeFile().parent_path();
  ASSERT_THAT(testkit::bytesIn(files), HasSubstr("MARK"));
  EXPECT_EQ(remove(told, 1), Outcome::removed);
  EXPECT_THAT(testkit::bytesIn(files), Not(HasSubstr("MARK")));
}

}  // namespace
}  // namespace kivo
