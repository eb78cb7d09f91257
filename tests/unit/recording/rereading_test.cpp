#include <gmock/gmock.h>

#include "book/book.h"
#include "recording/taught_entries.h"
#include "unit/recording/ledger_test.h"

namespace kivo::recording {

using book::Book;
using book::LedgerEntry;
using money::Kind;
using money::Money;
using recognition::MessagePattern;
using recognition::MessageTemplate;
using recognition::Outcome;
using recognition::Reading;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AReadAgainEntry : public LedgerTest {
 protected:
  static Reading unclear() {
    Reading reading = spent(1, "");
    reading.outcome = Outcome::needsReview;
    reading.amount.reset();
    return reading;
  }
};

TEST_F(AReadAgainEntry, HasTheNewReadingAndChangesNothing) {
  Book book = open();
  const LedgerEntry entry = recorded(book, "KEY-1", unclear());
  reading_ = spent(15000);
  reading_.kind = Kind::income;
  reading_.account = "4821";
  reading_.reference = "R7";
  const auto read = reread(book, entry.id);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->state, LedgerEntry::State::booked);
  EXPECT_EQ(read->amount, (Money{15000, "EGP"}));
  EXPECT_EQ(read->date, entry.date);
  EXPECT_EQ(book.entry(entry.id)->state, LedgerEntry::State::review);
  EXPECT_EQ(book.entry(entry.id)->amount, std::nullopt);
}

TEST_F(AReadAgainEntry, IsBookedInOneStep) {
  Book book = open();
  const LedgerEntry entry = recorded(book, "KEY-1", unclear());
  reading_ = spent(15000);
  reading_.kind = Kind::income;
  reading_.account = "4821";
  reading_.reference = "R7";
  ASSERT_TRUE(book.bookAs(*reread(book, entry.id)));
  const auto booked = open().entry(entry.id);
  EXPECT_EQ(booked->state, LedgerEntry::State::booked);
  EXPECT_EQ(booked->kind, Kind::income);
  EXPECT_EQ(booked->amount, (Money{15000, "EGP"}));
  EXPECT_EQ(booked->description, "Sunny Market");
  EXPECT_EQ(booked->category, "Groceries");
  EXPECT_EQ(booked->payee, "Sunny Market");
  EXPECT_EQ(booked->account, "4821");
  EXPECT_EQ(booked->reference, "R7");
  EXPECT_EQ(booked->key, "KEY-1");
}

TEST_F(AReadAgainEntry, ReplacesABookedReadingUnlessItWasEdited) {
  Book book = open();
  const LedgerEntry entry = recorded(book, "KEY-1", spent(15000));
  reading_ = spent(15000);
  reading_.kind = Kind::transfer;
  ASSERT_TRUE(book.bookAs(*reread(book, entry.id)));
  EXPECT_EQ(book.entry(entry.id)->kind, Kind::transfer);
  EXPECT_FALSE(book.entry(entry.id)->edited);
  reading_.kind = Kind::income;
  const auto read = reread(book, entry.id);
  book.edit(entry.id, {.date = money::Day("2026-11-20")});
  EXPECT_TRUE(book.entry(entry.id)->edited);
  EXPECT_FALSE(book.bookAs(*read));
  EXPECT_EQ(book.entry(entry.id)->kind, Kind::transfer);
}

TEST_F(AReadAgainEntry, HasCorrectionsAndRates) {
  Book book = open();
  const LedgerEntry known = recorded(book, "KEY-1", spent(100));
  correct(book, known.id, {.category = "Food"});
  book.setRate("USD", rate("50"));
  const LedgerEntry entry = recorded(book, "KEY-2", unclear());
  readings_ = [](const money::CurrencyCode& currency) {
    Reading reading = spent(2000, "Sunny Market", "USD");
    if (currency != "USD") reading.outcome = Outcome::needsReview;
    return reading;
  };
  const auto read = reread(book, entry.id);
  EXPECT_EQ(read->category, "Food");
  EXPECT_EQ(read->amount, (Money{100000, "EGP"}));
}

TEST_F(AReadAgainEntry, IsMarkedOnlyWhenItLooksLikeAnEarlierOne) {
  Book book = open();
  const LedgerEntry first = recorded(book, "KEY-1", unclear());
  const LedgerEntry second = recorded(book, "KEY-2", spent(15000));
  const LedgerEntry third = recorded(book, "KEY-3", unclear());
  reading_ = spent(15000);
  EXPECT_EQ(reread(book, first.id)->possibleDuplicateOf, std::nullopt);
  EXPECT_EQ(reread(book, third.id)->possibleDuplicateOf, second.id);
  reading_.reference = "R7";
  ASSERT_TRUE(book.bookAs(*reread(book, third.id)));
  EXPECT_EQ(book.entry(third.id)->possibleDuplicateOf, second.id);
  EXPECT_EQ(reread(book, third.id)->possibleDuplicateOf, second.id);
}

TEST_F(AReadAgainEntry, IsAbsentWithoutATextOrAPayment) {
  Book book = open();
  const LedgerEntry entry = recorded(book, "KEY-1", unclear());
  EXPECT_EQ(reread(book, 99), std::nullopt);
  reading_ = Reading{};
  EXPECT_EQ(reread(book, entry.id), std::nullopt);
  reading_ = spent(15000);
  book.forgetTexts();
  EXPECT_EQ(reread(book, entry.id), std::nullopt);
}

TEST_F(AReadAgainEntry, IsNotBookedWithoutASumNorOnceDeleted) {
  Book book = open();
  const LedgerEntry entry = recorded(book, "KEY-1", unclear());
  EXPECT_FALSE(book.bookAs(entry));
  reading_ = spent(15000);
  const auto read = reread(book, entry.id);
  EXPECT_TRUE(book.bookAs(*read));
  book.remove(entry.id);
  EXPECT_FALSE(book.bookAs(*read));
}

TEST_F(AReadAgainEntry, IsFoundByTheTemplateThatFits) {
  Book book = open();
  const LedgerEntry first = recorded(book, "KEY-1", unclear());
  recorded(book, "LOCK-2", unclear());
  const MessageTemplate taught{.text = "", .pattern = MessagePattern::parse("text of KEY{any}")};
  EXPECT_THAT(taughtEntries(book, taught, reader(), "EGP").unclear, ElementsAre(first.id));
  reading_ = Reading{};
  EXPECT_THAT(taughtEntries(book, taught, reader(), "EGP").none, ElementsAre(first.id));
  reading_ = spent(15000);
  EXPECT_THAT(taughtEntries(book, taught, reader(), "EGP").clear, SizeIs(1));
  ASSERT_TRUE(book.bookAs(taughtEntries(book, taught, reader(), "EGP").clear[0]));
  EXPECT_THAT(taughtEntries(book, taught, reader(), "EGP").clear, IsEmpty());
}

TEST(ListedIds, AreASentencesPart) {
  EXPECT_EQ(listed({}), "");
  EXPECT_EQ(listed({1}), "1");
  EXPECT_EQ(listed({1, 2, 5}), "1, 2 and 5");
}

}  // namespace
}  // namespace kivo::recording
