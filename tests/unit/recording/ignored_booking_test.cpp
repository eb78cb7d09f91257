// Messages that are not booked though they hold a sum: kept, and booked later.
#include "recording/ignored_booking.h"

#include <gmock/gmock.h>

#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

// The banks, merchants and people below do not exist.

namespace kivo::recording {

using book::IgnoredMessage;
using money::CurrencyCode;
using money::Kind;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AMessageWithASum : public LedgerTest {
 protected:
  AMessageWithASum() { reading_ = {.outcome = Outcome::notATransaction, .holdsSum = true}; }

  // The ignored message with this text, which is kept first.
  static IgnoredMessage ignored(Book& book, const std::string& text) {
    book.keepIgnored({.key = "KEY-" + text, .userId = "user", .date = "2026-11-21", .text = text});
    return book.ignored().front();
  }
  static StatedReading stated(const std::string& text, const StatedParts& parts) {
    Book book = open();
    return statedReading(book, ignored(book, text), parts, recognition::read, "EGP");
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 22, 12)};
};

TEST_F(AMessageWithASum, IsKeptWithTheReasonOfItsAnswer) {
  Book book = open();
  EXPECT_EQ(record(book, message("KEY-1")).reason, "not_a_transaction");
  reading_.outcome = Outcome::declined;
  EXPECT_EQ(record(book, message("KEY-2", "2026-11-22")).reason, "declined");
  const auto kept = book.ignored();
  ASSERT_THAT(kept, SizeIs(2));
  EXPECT_EQ(kept[0].key, "KEY-2");
  EXPECT_EQ(kept[0].reason, IgnoredMessage::Reason::declined);
  EXPECT_EQ(kept[0].date, money::Day("2026-11-22"));
  EXPECT_EQ(kept[1].text, "text of KEY-1");
  EXPECT_EQ(kept[1].userId, "user");
  EXPECT_EQ(kept[1].reason, IgnoredMessage::Reason::notATransaction);
}

TEST_F(AMessageWithASum, IsKeptOnceHoweverOftenItIsSent) {
  Book book = open();
  const std::string first = answer(book, message("KEY-1"));
  EXPECT_EQ(answer(book, message("KEY-1")), first);
  EXPECT_THAT(book.ignored(), SizeIs(1));
}

TEST_F(AMessageWithASum, IsNotKeptBesideItsTransaction) {
  Book book = open();
  reading_ = spent(100);
  record(book, message("KEY-1"));
  reading_.outcome = Outcome::needsReview;
  record(book, message("KEY-2"));
  EXPECT_THAT(book.ignored(), IsEmpty());
}

TEST_F(AMessageWithASum, IsKeptAsFarAsItIsRead) {
  Book book = open();
  Message long_ = message("KEY-1");
  long_.text = std::string(recognition::longestMessage - 1, 'x') + "é and more";
  record(book, long_);
  EXPECT_EQ(book.ignored(1)->text, std::string(recognition::longestMessage - 1, 'x'));
}

TEST_F(AMessageWithASum, IsAddedWithItsKeyDayAndText) {
  Book book = open();
  const std::string first = answer(book, message("KEY-1", "2026-11-20"));
  const auto added = addIgnored(book, 1, {spent(64000, "Tulip Insurance")});
  ASSERT_TRUE(added);
  const auto entry = book.entry(added->id);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->state, LedgerEntry::State::booked);
  EXPECT_EQ(entry->key, "KEY-1");
  EXPECT_EQ(entry->userId, "user");
  EXPECT_EQ(entry->date, money::Day("2026-11-20"));
  EXPECT_EQ(entry->text, "text of KEY-1");
  EXPECT_EQ(entry->amount, (Money{64000, "EGP"}));
  EXPECT_THAT(book.ignored(), IsEmpty());
  EXPECT_EQ(answer(book, message("KEY-1")), first);
  EXPECT_FALSE(addIgnored(book, 1, {spent(64000)}));
}

TEST_F(AMessageWithASum, IsMarkedAndCorrectedAsOthersAreWhenItIsAdded) {
  Book book = open();
  record(book, message("KEY-1"));
  recorded(book, "KEY-2", spent(100, "Tulip Insurance"));
  correct(book, 1, {.description = "Car insurance", .category = "Car"});
  const auto added = addIgnored(book, 1, {spent(100, "TULIP insurance")});
  ASSERT_TRUE(added);
  EXPECT_EQ(added->id, 2);
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, 1);
  EXPECT_EQ(book.entry(2)->description, "Car insurance");
  EXPECT_EQ(book.entry(2)->category, "Car");
}

TEST_F(AMessageWithASum, StaysWhenItIsReadAsNoTransaction) {
  Book book = open();
  record(book, message("KEY-1"));
  EXPECT_FALSE(addIgnored(book, 1, {reading_}));
  EXPECT_THAT(book.ignored(), SizeIs(1));
}

TEST_F(AMessageWithASum, IsReadAsThePersonStatesIt) {
  const StatedReading read =
      stated("Zap! Tulip Bank moved EGP 640.00 over to ALLIANZ, EGP 99.10 stay.",
             {.kind = Kind::expense, .amount = Money{64000, "EGP"}, .payee = "Moon Pharmacy"});
  EXPECT_EQ(read.kind, Kind::expense);
  EXPECT_EQ(read.message.reading.amount, (Money{64000, "EGP"}));
  EXPECT_EQ(read.message.reading.payee, "Moon Pharmacy");
  EXPECT_EQ(read.message.reading.description, "Moon Pharmacy");
  EXPECT_EQ(read.message.reading.category, "Health");
}

TEST_F(AMessageWithASum, NeedsNoSumWhenItHoldsOne) {
  const StatedReading read = stated("Zap! 40.00 USD flew", {.kind = Kind::income});
  EXPECT_EQ(read.message.reading.amount, (Money{4000, "USD"}));
  EXPECT_EQ(read.message.reading.description, "Deposit");
  EXPECT_EQ(read.message.reading.category, "Income");
}

TEST_F(AMessageWithASum, NeedsTheSumWhenItHoldsSeveralOrAnUnclearOne) {
  for (const char* const text : {"Zap! EGP 640.00 flew, EGP 99.10 stay", "Zap! EGP 1,0000 flew",
                                 "Zap! EGP 0.00 flew", "Zap! EGP 1,0000 flew, EGP 99.10 stay"}) {
    EXPECT_FALSE(stated(text, {.kind = Kind::expense}).message.reading.amount) << text;
  }
}

TEST_F(AMessageWithASum, NeedsAKindThatNobodyRead) {
  EXPECT_FALSE(stated("Zap! EGP 640.00 flew", {.amount = Money{100, "EGP"}}).kind);
}

TEST_F(AMessageWithASum, NeedsNothingWhenItIsReadAsAPaymentNow) {
  Book book = open();
  const IgnoredMessage message = ignored(book, "Zap! EGP 640.00 flew, EGP 99.10 stay");
  reading_ = spent(64000, "Sunny Market");
  reading_.description = "The market";
  const StatedReading now = statedReading(book, message, {}, reader(), "EGP");
  EXPECT_EQ(now.kind, Kind::expense);
  EXPECT_EQ(now.message.reading, reading_);
  const StatedReading other =
      statedReading(book, message, {.payee = "Moon Pharmacy"}, reader(), "EGP");
  EXPECT_EQ(other.kind, Kind::expense);
  EXPECT_EQ(other.message.reading.amount, (Money{64000, "EGP"}));
  EXPECT_EQ(other.message.reading.description, "Moon Pharmacy");
}

TEST_F(AMessageWithASum, HoldsItsSumsInTheirCurrencies) {
  EXPECT_THAT(
      sumsIn("Zap! USD 20.00 (EGP 980.00) at 5.50, EGP 1,0000 stay", "EGP"),
      ElementsAre(Money{2000, "USD"}, Money{98000, "EGP"}, Money{550, "EGP"}, std::nullopt));
}

}  // namespace
}  // namespace kivo::recording
