// Books of earlier versions, also with rows that later versions refuse.
#include <gmock/gmock.h>

#include "book/book_file.h"
#include "testkit/first_book.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recording::LedgerTest;

using money::Money;
using recognition::Reading;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::ThrowsMessage;
using testkit::firstBookRow;

class AFirstBook : public LedgerTest {
 protected:
  void make(const std::string& sql) { testkit::makeFirstBook(file(), sql); }
  static std::string row(const std::string& key, const std::string& category,
                         const std::string& payee = "Sunny Market") {
    return firstBookRow(key, "100", "2026-11-21", "expense", "EGP", "booked", payee, category);
  }
  static std::vector<std::int64_t> ids(const Book& book, LedgerEntry::State state) {
    std::vector<std::int64_t> found;
    for (const LedgerEntry& entry : book.entries({.state = state})) found.push_back(entry.id);
    return found;
  }
};

using AFourthBook = LedgerTest;

TEST_F(AFirstBook, KeepsItsEntriesAnswersRatesAndIds) {
  make(firstBookRow("KEY-1") +
       firstBookRow("KEY-2", "NULL", "2026-11-20", "expense", "", "review") +
       firstBookRow("KEY-3") + "UPDATE transactions SET possible_duplicate_of = 1 WHERE id = 3;" +
       "INSERT INTO rates VALUES ('USD', '48.5');" + firstBookRow("KEY-4") +
       "DELETE FROM transactions WHERE key = 'KEY-4'");
  Book book = open();
  EXPECT_THAT(ids(book, LedgerEntry::State::booked), ElementsAre(3, 1));
  EXPECT_THAT(ids(book, LedgerEntry::State::review), ElementsAre(2));
  EXPECT_THAT(ids(book, LedgerEntry::State::setAside), IsEmpty());
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, 1);
  EXPECT_EQ(book.entry(1)->text, "text of KEY-1");
  EXPECT_EQ(book.entry(1)->amount, (Money{15000, "EGP"}));
  EXPECT_EQ(book.rates().size(), 1U);
  EXPECT_EQ(answer(book, message("KEY-4")), R"({"saved":true})");
  EXPECT_EQ(recorded(book, "KEY-5", spent(100)).id, 5);  // the id 4 was given already
  EXPECT_EQ(testkit::RawStore(file()).run("PRAGMA user_version"),
            std::to_string(bookVersion()) + "\n");
}

TEST_F(AFirstBook, GivesItsIncomesTheirDirection) {
  make(firstBookRow("KEY-1") + firstBookRow("KEY-2", "100", "2026-11-21", "income"));
  const Book book = open();
  EXPECT_FALSE(book.entry(1)->incoming);
  EXPECT_TRUE(book.entry(2)->incoming);
  EXPECT_FALSE(book.entry(2)->refund);
}

TEST_F(AFirstBook, SetsAsideRowsWhoseValuesCannotBe) {
  make(firstBookRow("sound") + firstBookRow("date", "100", "2026-11") +
       firstBookRow("day", "100", "2026-02-30") + firstBookRow("blank", "100", "2026-11-21 ") +
       firstBookRow("kind", "100", "2026-11-21", "gift") + firstBookRow("zero", "0") +
       firstBookRow("least", "-9223372036854775808") + firstBookRow("large", "9007199254740993") +
       firstBookRow("none", "NULL") +
       firstBookRow("currency", "100", "2026-11-21", "expense", "egp") +
       firstBookRow("nameless", "100", "2026-11-21", "expense", "") +
       firstBookRow("state", "100", "2026-11-21", "expense", "EGP", "odd") +
       firstBookRow("foreign", "NULL", "2026-11-21", "expense", "EGP", "review") +
       firstBookRow("largest", "9007199254740992"));
  Book book = open();
  EXPECT_THAT(ids(book, LedgerEntry::State::booked), ElementsAre(14, 1));
  EXPECT_THAT(ids(book, LedgerEntry::State::review), IsEmpty());
  EXPECT_EQ(ids(book, LedgerEntry::State::setAside).size(), 12U);
  EXPECT_EQ(book.entry(2)->impossibleDate, "2026-11");
  EXPECT_EQ(book.entry(7)->amount->minorUnits, std::numeric_limits<std::int64_t>::min());
}

TEST_F(AFirstBook, TakesASetAsideRowIntoReviewWhenItIsCorrected) {
  make(firstBookRow("KEY-1", "-5", "2026-11") + firstBookRow("KEY-2", "0"));
  Book book = open();
  EXPECT_FALSE(accept(book, 1));
  ASSERT_TRUE(book.edit(1, {.date = money::Day("2026-11-20")}));
  EXPECT_EQ(book.entry(1)->state, LedgerEntry::State::setAside);
  EXPECT_EQ(impossibleValue(*book.entry(1)), "amount");
  ASSERT_TRUE(book.edit(1, {.amount = Money{500, "EGP"}}));
  EXPECT_EQ(book.entry(1)->state, LedgerEntry::State::review);
  EXPECT_TRUE(accept(book, 1));
  EXPECT_TRUE(book.remove(2));
  EXPECT_THAT(ids(book, LedgerEntry::State::setAside), IsEmpty());
}

TEST_F(AFirstBook, MergesCorrectionsOfOnePayee) {
  make(row("KEY-1", "Groceries", "CAFÉ LUNE") + R"(
    INSERT INTO corrections VALUES ('CAFÉ LUNE', 'The first', 'Food');
    INSERT INTO corrections VALUES ('Café Lune', 'The last', NULL);
    INSERT INTO corrections VALUES ('Another', 'Other', 'Other'))");
  Book book = open();
  const LedgerEntry later = recorded(book, "KEY-2", spent(100, "cafe lune"));
  EXPECT_EQ(later.description, "The last");
  EXPECT_EQ(later.category, "Food");
}

TEST_F(AFirstBook, GivesACategoryTheStandardSpellingOrThatOfMostRows) {
  make(row("KEY-1", "groceries") + row("KEY-2", "groceries") + row("KEY-3", "Groceries") +
       row("KEY-4", "dining") + row("KEY-5", "Dining") + row("KEY-6", "food:tea") +
       row("KEY-7", "Food:Coffee") + row("KEY-8", "food:tea") +
       row("KEY-9", "__system_transfer__") +
       "INSERT INTO corrections VALUES ('Sunny Market', NULL, 'GROCERIES');"
       "INSERT INTO corrections VALUES ('Own', NULL, '__system_transfer__')");
  Book book = open();
  EXPECT_EQ(testkit::RawStore(file()).run("SELECT category FROM transactions ORDER BY id"),
            "Groceries\nGroceries\nGroceries\nDining\nDining\nfood:tea\nfood:Coffee\nfood:tea\n"
            "Transfer\n");
  EXPECT_EQ(testkit::RawStore(file()).run("SELECT category FROM rules ORDER BY category"),
            "Groceries\nTransfer\n");
}

TEST_F(AFirstBook, StaysAsItIsWhenItCannotBeUpgraded) {
  make(firstBookRow("KEY-1") + "CREATE TABLE categories (another TEXT)");
  EXPECT_THAT([] { Book::open(); }, ThrowsMessage<BookFailure>(HasSubstr(file().string())));
  testkit::RawStore raw(file());
  EXPECT_EQ(raw.run("PRAGMA user_version"), "1\n");
  EXPECT_EQ(raw.run("SELECT count(*), max(payee) FROM transactions"), "1|Sunny Market\n");
  raw.run("DROP TABLE categories");
  EXPECT_THAT(ids(open(), LedgerEntry::State::booked), ElementsAre(1));
}

TEST_F(AFourthBook, KeepsItsRatesFromTheBeginningAndTheirPast) {
  open();
  testkit::RawStore(file()).run(R"(
    DROP TABLE rates;
    DROP TABLE past_rates;
    DROP INDEX transfers_of_cash;
    DROP TABLE budgets;
    DROP TABLE past_budgets;
    DROP TABLE passed_budgets;
    CREATE TABLE rates (currency TEXT PRIMARY KEY NOT NULL, rate TEXT NOT NULL) STRICT;
    CREATE TABLE past_rates (
      command INTEGER NOT NULL, existed INTEGER NOT NULL, currency TEXT NOT NULL, rate TEXT,
      PRIMARY KEY (command, currency)
    ) STRICT, WITHOUT ROWID;
    INSERT INTO rates VALUES ('USD', '48.5'), ('EUR', '52');
    INSERT INTO commands VALUES (1, 4000000000, 'rate USD 48.5', '');
    INSERT INTO past_rates VALUES (1, 1, 'USD', '30.9'), (1, 0, 'EUR', NULL);
    PRAGMA user_version = 4)");
  Book book = open();
  EXPECT_EQ(book.rate("USD", money::Day("2020-01-01"))->text(), "48.5");
  book.undo(1);
  EXPECT_THAT(book.rates(), ElementsAre(StoredRate{"USD", "", "30.9"}));
}

}  // namespace
}  // namespace kivo::book
