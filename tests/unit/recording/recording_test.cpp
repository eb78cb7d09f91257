#include <gmock/gmock.h>

#include "book/book_file.h"
#include "unit/recording/ledger_test.h"

namespace kivo::recording {

using book::Book;
using book::BookFailure;
using book::LedgerEntry;
using money::Kind;
using money::Money;
using recognition::Outcome;
using recognition::Reading;

namespace {

using testing::HasSubstr;

class ABook : public LedgerTest {};

TEST_F(ABook, BooksATransaction) {
  Book book = open();
  const auto response = record(book, message("KEY-1"));
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.transaction_type, "expense");
  ASSERT_TRUE(response.expense);
  EXPECT_EQ(response.expense->id, "1");
  EXPECT_EQ(response.expense->description, "Sunny Market");
  EXPECT_EQ(response.expense->amount, 150.0);
  EXPECT_EQ(response.expense->category, "Groceries");
  EXPECT_EQ(response.expense->expense_date, "2026-11-21");

  const auto entries = book.entries({});
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].key, "KEY-1");
  EXPECT_EQ(entries[0].amount, (Money{15000, "EGP"}));
  EXPECT_EQ(entries[0].text, "text of KEY-1");
}

TEST_F(ABook, AnswersAKnownKeyWithTheSameBytesWhateverTheText) {
  Book book = open();
  const std::string first = answer(book, message("KEY-1"));
  reading_ = spent(99900, "Another");
  Message again = message("KEY-1", "2026-12-01");
  again.text = "another text";
  EXPECT_EQ(answer(book, again, "USD"), first);
  Book other = open();
  EXPECT_EQ(answer(other, again), first);
  EXPECT_EQ(book.entries({}).size(), 1U);
  EXPECT_EQ(read_, 1);
}

TEST_F(ABook, NamesTheUncountedCategoryOnlyInAnswersToTheExpenseIntent) {
  Book book = open();
  reading_ = spent(15000, "");
  reading_.kind = Kind::transfer;
  reading_.category = "Transfer";
  EXPECT_EQ(record(book, message("KEY-1")).expense->category, "Transfer");
  Message sentence = message("KEY-2");
  sentence.text = "Paid 150.0 EGP at Savings";
  const auto response = record(book, sentence);
  EXPECT_EQ(response.transaction_type, "transfer");
  EXPECT_EQ(response.expense->category, "__system_transfer__");
  EXPECT_EQ(book.entry(2)->category, "Transfer");
  reading_.category = "Credit Card Settlement";  // is not counted either
  sentence.idempotencyKey = "KEY-3";
  EXPECT_EQ(record(book, sentence).expense->category, "Credit Card Settlement");
}

TEST_F(ABook, KeepsTheKeysOfUsersApart) {
  Book book = open();
  Message other = message("KEY-1");
  other.userId = "another user";
  record(book, message("KEY-1"));
  EXPECT_TRUE(record(book, other).saved);
  EXPECT_EQ(book.entries({}).size(), 2U);
}

TEST_F(ABook, KeepsTheAnswerToAKeyWhenItsTransactionIsDeletedOrEdited) {
  Book book = open();
  const std::string first = answer(book, message("KEY-1"));
  const std::string second = answer(book, message("KEY-2"));
  ASSERT_TRUE(book.remove(1));
  ASSERT_TRUE(book.edit(2, {.amount = Money{1, "EGP"}}));
  EXPECT_EQ(answer(book, message("KEY-1")), first);
  EXPECT_EQ(answer(book, message("KEY-2")), second);
  EXPECT_EQ(book.entries({}).size(), 1U);
  EXPECT_EQ(record(book, message("KEY-3")).expense->id, "3");  // ids are not reused
}

TEST_F(ABook, StoresOnlyTheKeyOfAMessageThatIsNoTransaction) {
  Book book = open();
  reading_.outcome = Outcome::declined;
  EXPECT_EQ(record(book, message("KEY-1")).reason, "declined");
  reading_.outcome = Outcome::notATransaction;
  EXPECT_EQ(record(book, message("KEY-2")).reason, "not_a_transaction");
  reading_ = spent(100);
  EXPECT_FALSE(record(book, message("KEY-1")).saved);
  EXPECT_EQ(raw("SELECT count(*) FROM transactions"), "0\n");
}

TEST_F(ABook, PutsAnUnclearMessageInReview) {
  Book book = open();
  reading_.outcome = Outcome::needsReview;
  reading_.amount.reset();
  const auto response = record(book, message("KEY-1"));
  EXPECT_FALSE(response.saved);
  EXPECT_EQ(response.reason, "needs_review");
  EXPECT_TRUE(book.entries({}).empty());
  const auto entries = book.entries({.state = LedgerEntry::State::review});
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_FALSE(entries[0].amount);
}

TEST_F(ABook, PutsAMessageWithASumThatCannotBeBookedInReview) {
  Book book = open();
  reading_ = spent((std::int64_t{1} << 53) + 1);
  EXPECT_EQ(record(book, message("KEY-1")).reason, "needs_review");
  EXPECT_FALSE(book.entry(1)->amount);
}

TEST_F(ABook, MarksADuplicateByAmountPayeeAndDay) {
  Book book = open();
  EXPECT_FALSE(recorded(book, "KEY-1", spent(15000)).possibleDuplicateOf);
  EXPECT_EQ(recorded(book, "KEY-2", spent(15000, "SUNNY MARKET")).possibleDuplicateOf, 1);
  EXPECT_EQ(recorded(book, "KEY-3", spent(15000)).possibleDuplicateOf, 1);
  EXPECT_EQ(book.entries({}).size(), 3U);
}

TEST_F(ABook, MarksADuplicateByReference) {
  Book book = open();
  Reading reading = spent(15000);
  reading.reference = "UTR 7";
  recorded(book, "KEY-1", reading);
  reading = spent(200, "Other payee");
  reading.reference = "UTR 7";
  EXPECT_EQ(recorded(book, "KEY-2", reading, "2026-11-25").possibleDuplicateOf, 1);
}

TEST_F(ABook, MarksNoDuplicateWhenAmountPayeeDayKindOrCurrencyDiffers) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  EXPECT_FALSE(recorded(book, "KEY-2", spent(15001)).possibleDuplicateOf);
  EXPECT_FALSE(recorded(book, "KEY-3", spent(15000, "Moon Market")).possibleDuplicateOf);
  EXPECT_FALSE(recorded(book, "KEY-4", spent(15000), "2026-11-22").possibleDuplicateOf);
  Reading received = spent(15000);
  received.kind = Kind::income;
  EXPECT_FALSE(recorded(book, "KEY-5", received).possibleDuplicateOf);
  Reading foreign = spent(15000, "Sunny Market", "USD");
  foreign.outcome = Outcome::needsReview;
  EXPECT_FALSE(recorded(book, "KEY-6", foreign).possibleDuplicateOf);
}

TEST_F(ABook, PutsAForeignAmountInReviewUntilARateIsSet) {
  Book book = open();
  readings_ = [](const money::CurrencyCode& currency) {
    Reading reading = spent(1050, "Sunny Market", "USD");
    if (currency != "USD") reading.outcome = Outcome::needsReview;
    return reading;
  };
  EXPECT_EQ(record(book, message("KEY-1")).reason, "needs_review");
  EXPECT_EQ(book.entries({.state = LedgerEntry::State::review})[0].amount, (Money{1050, "USD"}));
  book.setRate("USD", rate("48.5"));
  const auto response = record(book, message("KEY-2"));
  ASSERT_TRUE(response.saved);
  EXPECT_EQ(response.expense->amount, 509.25);
  EXPECT_EQ(book.entries({})[0].amount, (Money{50925, "EGP"}));
  EXPECT_EQ(book.entries({})[0].original, (Money{1050, "USD"}));
  EXPECT_FALSE(book.entry(1)->original);
  ASSERT_TRUE(accept(book, 1));
  EXPECT_EQ(book.entry(1)->original, (Money{1050, "USD"}));
  ASSERT_TRUE(accept(book, 1));
  EXPECT_EQ(book.entry(1)->original, (Money{1050, "USD"}));
  ASSERT_TRUE(book.edit(1, {.amount = Money{50000, "EGP"}}));
  EXPECT_FALSE(book.entry(1)->original);
  EXPECT_EQ(record(book, message("KEY-1")).reason, "needs_review");
}

TEST_F(ABook, ConvertsAForeignAmountByTheRateOfItsDay) {
  Book book = open();
  readings_ = [](const money::CurrencyCode& currency) {
    Reading reading = spent(1000, "Sunny Market", "USD");
    if (currency != "USD") reading.outcome = Outcome::needsReview;
    return reading;
  };
  book.setRate("USD", rate("50"), money::Day("2026-11-21"));
  const auto recordOn = [&](const std::string& key, const money::Day& day) {
    Message sent = message(key);
    sent.expenseDate = day;
    return record(book, sent);
  };
  EXPECT_EQ(recordOn("KEY-1", money::Day("2026-11-20")).reason, "needs_review");
  EXPECT_EQ(recordOn("KEY-2", money::Day("2026-11-21")).expense->amount, 500);
  EXPECT_FALSE(accept(book, 1)->rate);
  book.setRate("USD", rate("40"));
  EXPECT_EQ(recordOn("KEY-3", money::Day("2026-11-20")).expense->amount, 400);
  EXPECT_EQ(recordOn("KEY-4", money::Day("2026-11-22")).expense->amount, 500);
}

TEST_F(ABook, KeepsTheBalanceThatAMessageStates) {
  Book book = open();
  Reading reading = spent(100);
  reading.balance = Money{987654, "EGP"};
  EXPECT_EQ(recorded(book, "KEY-1", reading).balance, (Money{987654, "EGP"}));
  reading.outcome = Outcome::needsReview;
  EXPECT_EQ(recorded(book, "KEY-2", reading).balance, (Money{987654, "EGP"}));
  EXPECT_FALSE(recorded(book, "KEY-3", spent(100)).balance);
  LedgerEntry again = *book.entry(1);
  again.balance = Money{5, "USD"};
  ASSERT_TRUE(book.bookAs(again));
  EXPECT_EQ(book.entry(1)->balance, (Money{5, "USD"}));
}

TEST_F(ABook, ConvertsBetweenCurrenciesWithDifferentDecimals) {
  Book book = open();
  readings_ = [](const money::CurrencyCode& currency) {
    Reading reading = spent(1250, "Sunny Market", "KWD");  // 1.250
    if (currency != "KWD") reading.outcome = Outcome::needsReview;
    return reading;
  };
  book.setRate("KWD", rate("490.5"));
  answer(book, message("KEY-1"), "JPY");
  EXPECT_EQ(book.entries({})[0].amount, (Money{613, "JPY"}));  // 613.125
}

TEST_F(ABook, PutsAnUnclearForeignAmountInReviewDespiteARate) {
  Book book = open();
  book.setRate("USD", rate("48.5"));
  reading_ = spent(1050, "Sunny Market", "USD");
  reading_.outcome = Outcome::needsReview;
  EXPECT_EQ(record(book, message("KEY-1")).reason, "needs_review");
}

TEST_F(ABook, AppliesACorrectionToLaterMessagesOfThePayee) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "SNNY MRKT 17"));
  recorded(book, "KEY-2", spent(200, "SNNY MRKT 17"));
  correct(book, 1, {.description = "Sunny Market"});
  correct(book, 1, {.category = "Food"});
  const LedgerEntry later = recorded(book, "KEY-3", spent(300, "snny mrkt 17"));
  EXPECT_EQ(later.description, "Sunny Market");
  EXPECT_EQ(later.category, "Food");
  EXPECT_EQ(book.entry(2)->description, "SNNY MRKT 17");
  EXPECT_EQ(recorded(book, "KEY-4", spent(300, "Another")).category, "Groceries");
}

TEST_F(ABook, StoresNoCorrectionForAMessageWithoutAPayee) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, ""));
  correct(book, 1, {.category = "Food"});
  EXPECT_EQ(recorded(book, "KEY-2", spent(200, "")).category, "Groceries");
}

TEST_F(ABook, AcknowledgesNothingWhenTheWriteFails) {
  Book book = open();
  raw("CREATE TRIGGER full BEFORE INSERT ON answers BEGIN SELECT raise(ABORT, 'full'); END");
  EXPECT_THROW(record(book, message("KEY-1")), BookFailure);
  EXPECT_TRUE(book.entries({}).empty());
  raw("DROP TRIGGER full");
  EXPECT_TRUE(record(book, message("KEY-1")).saved);
}

}  // namespace
}  // namespace kivo::recording
