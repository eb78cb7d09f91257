#include "queue/pending_sms_queue.h"

#include <limits>

#include <gmock/gmock.h>

#include "unit/queue/a_queue.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testkit::idsAndCounts;
using testkit::queuedItem;
using testkit::TestPhone;

TEST_F(AQueue, IsEmptyWhenNothingIsStored) { EXPECT_THAT(load(), IsEmpty()); }

TEST_F(AQueue, StoresItsFirstItem) {
  enqueue(queuedItem("A"));
  EXPECT_EQ(storedText(), R"([{"id":"A","smsText":"text A","expenseDate":"2026-01-30",)"
                          R"("queuedAt":"2026-01-30T10:00:00Z","retryCount":0,"source":"sms"}])");
  EXPECT_EQ(storedCount(), "1");
}

TEST_F(AQueue, ReturnsItsItemsUnchanged) {
  PendingSmsItem manual = queuedItem("B", 7);
  manual.smsText = "Paid EGP 12.5 \"at\" مقهى\n";
  manual.source = "apple_pay";
  manual.amount = 12.5;
  manual.merchant = "مقهى 💸";
  save({queuedItem("A"), manual});
  EXPECT_THAT(load(), ElementsAre(queuedItem("A"), manual));
}

TEST_F(AQueue, PutsNewItemsAtTheEnd) {
  for (const auto* const id : {"A", "B", "C"}) enqueue(queuedItem(id));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "B:0", "C:0"));
  EXPECT_EQ(storedCount(), "3");
}

TEST_F(AQueue, IsVisibleToOthersWhenASaveReturns) {
  save({queuedItem("A")});
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0"));
}

TEST_F(AQueue, StoresAnEmptyList) {
  save({});
  EXPECT_EQ(storedText(), "[]");
  EXPECT_EQ(storedCount(), "0");
}

TEST_F(AQueue, IsEmptiedByAnAmountThatIsNotFinite) {
  for (const double amount :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    PendingSmsItem odd = queuedItem("B");
    odd.amount = amount;
    save({queuedItem("A"), odd, queuedItem("C")});
    EXPECT_EQ(storedText(), "[]");
    EXPECT_EQ(storedCount(), "3");
  }
}

TEST_F(AQueue, DropsADuplicateWithinAMinute) {
  enqueue(queuedAt("A", "2026-01-31T09:00:00Z"));
  const auto before = phone_.contents();
  enqueue(queuedAt("B", "2026-01-31T09:00:59Z"));
  EXPECT_EQ(phone_.contents(), before);
}

TEST_F(AQueue, DoesNotWriteTheCountForADuplicate) {
  enqueue(queuedAt("A", "2026-01-31T09:00:00Z"));
  phone_.put(StoreKeys::pendingSmsQueueCount, "untouched");
  enqueue(queuedAt("B", "2026-01-31T09:00:00Z"));
  EXPECT_EQ(storedCount(), "untouched");
}

TEST_F(AQueue, KeepsAnEqualTextAfterAMinute) {
  enqueue(queuedAt("A", "2026-01-31T09:00:00Z"));
  enqueue(queuedAt("B", "2026-01-31T09:01:00Z"));
  EXPECT_THAT(load(), SizeIs(2));
}

TEST_F(AQueue, ComparesTimesInBothDirections) {
  enqueue(queuedAt("A", "2026-01-31T09:01:00Z"));
  enqueue(queuedAt("B", "2026-01-31T09:00:01Z"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0"));
  enqueue(queuedAt("C", "2026-01-31T09:00:00Z"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "C:0"));
}

TEST_F(AQueue, DetectsADuplicateOfAnyItem) {
  enqueue(queuedAt("A", "2026-01-31T09:00:00Z"));
  enqueue(queuedItem("other"));
  enqueue(queuedAt("B", "2026-01-31T09:00:30Z"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "other:0"));
}

TEST_F(AQueue, DetectsADuplicateOfTheOldestItemOfAFullQueue) {
  auto full = items(200);
  full.front() = queuedAt("A", "2026-01-31T09:00:00Z");
  save(full);
  enqueue(queuedAt("B", "2026-01-31T09:00:30Z"));
  EXPECT_EQ(load(), full);
}

TEST_F(AQueue, DistinguishesTextsByEveryCharacter) {
  PendingSmsItem item = queuedAt("A", "2026-01-31T09:00:00Z");
  for (const auto* const text : {"Paid 1", "Paid 1 ", " Paid 1", "paid 1", "Paid\u00a01"}) {
    item.smsText = text;
    enqueue(item);
  }
  EXPECT_THAT(load(), SizeIs(5));
}

TEST_F(AQueue, ComparesOnlyTextAndTimeForDuplicates) {
  PendingSmsItem item = queuedAt("A", "2026-01-31T09:00:00Z");
  enqueue(item);
  item.id = "B";
  item.source = "apple_pay";
  item.amount = 1;
  item.expenseDate = "2026-02-01";
  enqueue(item);
  EXPECT_THAT(load(), SizeIs(1));
}

TEST_F(AQueue, KeepsDifferentTextsWithTheSameId) {
  PendingSmsItem item = queuedItem("A");
  enqueue(item);
  item.smsText = "another";
  enqueue(item);
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "A:0"));
}

TEST_F(AQueue, ReadsTimesWithAnOffset) {
  enqueue(queuedAt("A", "2026-01-31T11:00:00+02:00"));
  enqueue(queuedAt("B", "2026-01-31T09:00:59Z"));
  EXPECT_THAT(load(), SizeIs(1));
}

TEST_F(AQueue, TreatsAnInvalidQueuedTimeAsNow) {
  for (const auto* const unreadable : {"yesterday", "", "2026-01-31", "2020-01-01T00:00:00.5Z"}) {
    save({queuedAt("A", unreadable)});
    enqueue(queuedAt("B", "2026-01-31T09:05:07Z"));  // the present moment
    EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0")) << unreadable;
  }
}

TEST_F(AQueue, KeepsATextAMinuteOlderThanAnInvalidTime) {
  save({queuedAt("A", "yesterday")});
  enqueue(queuedAt("B", "2026-01-31T09:04:07Z"));  // a minute before the present moment
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "B:0"));
}

TEST_F(AQueue, TreatsAnInvalidNewTimeAsNow) {
  save({queuedAt("A", "2026-01-31T09:04:08Z")});
  enqueue(queuedAt("B", "now"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0"));
  phone_.clock.advance(std::chrono::seconds(1));
  enqueue(queuedAt("B", "now"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0", "B:0"));
}

TEST_F(AQueue, TreatsTwoInvalidTimesAsEqual) {
  save({queuedAt("A", "then")});
  enqueue(queuedAt("B", "now"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:0"));
}

TEST_F(AQueue, DropsItsOldestItemAbove200) {
  save(items(200));
  enqueue(queuedItem("new"));
  const auto kept = load();
  ASSERT_THAT(kept, SizeIs(200));
  EXPECT_EQ(kept.front().id, "1");
  EXPECT_EQ(kept.back().id, "new");
  EXPECT_EQ(storedCount(), "200");
}

TEST_F(AQueue, Keeps200Items) {
  save(items(199));
  enqueue(queuedItem("new"));
  const auto kept = load();
  ASSERT_THAT(kept, SizeIs(200));
  EXPECT_EQ(kept.front().id, "0");
}

TEST_F(AQueue, IsCutTo200WhenItHeldMore) {
  save(items(250));
  EXPECT_THAT(load(), SizeIs(250)) << "a save alone cuts nothing";
  enqueue(queuedItem("new"));
  const auto kept = load();
  ASSERT_THAT(kept, SizeIs(200));
  EXPECT_EQ(kept.front().id, "51");
  EXPECT_EQ(kept.back().id, "new");
}

TEST_F(AQueue, IsNotCutTo200ByADuplicate) {
  save(items(250));
  enqueue(queuedItem("249"));
  EXPECT_THAT(load(), SizeIs(250));
}

TEST_F(AQueue, LosesTheEarlierOfTwoSavesAtTheSameTime) {
  SharedStore other = phone_.openStore();
  auto seenByOne = PendingSmsQueue::load(store_);
  auto seenByOther = PendingSmsQueue::load(other);
  seenByOne.push_back(queuedItem("one"));
  seenByOther.push_back(queuedItem("other"));
  PendingSmsQueue::save(seenByOne, store_);
  PendingSmsQueue::save(seenByOther, other);
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("other:0"));
  EXPECT_EQ(storedCount(), "1");
}

TEST_F(AQueue, AcceptsAnItemWhileADrainHoldsTheLock) {
  phone_.put(StoreKeys::smsQueueDrainLock, platform::secondsSince1970(TestPhone::start));
  enqueue(queuedItem("A"));
  EXPECT_THAT(load(), SizeIs(1));
}

TEST_F(AQueue, ChangesNoOtherKey) {
  auto expected = phone_.contents();
  enqueue(queuedItem("A"));
  auto after = phone_.contents();
  after.erase("pendingSmsQueue");
  after.erase("pendingSmsQueueCount");
  EXPECT_EQ(after, expected);
}

}  // namespace
}  // namespace kivo
