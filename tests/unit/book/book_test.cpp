#include "book/book.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "book/book_file.h"
#include "testkit/stored_bytes.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recording::LedgerTest;

using money::Kind;
using money::Money;
using recognition::Outcome;
using recognition::Reading;
using recording::Message;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::ThrowsMessage;

class AStoredBook : public LedgerTest {
 protected:
  static std::vector<std::int64_t> ids(const std::vector<LedgerEntry>& entries) {
    std::vector<std::int64_t> found;
    for (const LedgerEntry& entry : entries) found.push_back(entry.id);
    return found;
  }

  static unsigned modeOf(const fs::path& path) {
    struct stat found {};
    EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
    return found.st_mode & 0777U;
  }

  // Three entries of three days, the newest recorded first.
  Book three() {
    Book book = open();
    recorded(book, "KEY-1", spent(100, "Sunny Market"), "2026-11-30");
    Reading reading = spent(200, "Moon 50% Café");
    reading.category = "Eating out";
    reading.reference = "REF_7";
    recorded(book, "KEY-2", reading, "2026-11-01");
    recorded(book, "KEY-3", spent(300, "Star Rail"), "2026-10-31");
    return book;
  }
};

TEST_F(AStoredBook, IsPrivateAndHasItsApplicationIdAndVersion) {
  open();
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(file().parent_path()), 0700U);
  testkit::RawStore raw(file());
  EXPECT_EQ(raw.run("PRAGMA journal_mode"), "wal\n");
  EXPECT_EQ(raw.run("PRAGMA user_version"), std::to_string(bookVersion()) + "\n");
  EXPECT_EQ(raw.run("PRAGMA application_id"), "1266044007\n");
}

TEST_F(AStoredBook, ListsTheNewestFirst) {
  EXPECT_THAT(ids(three().entries({})), ElementsAre(1, 2, 3));
}

TEST_F(AStoredBook, ListsTheEntriesThatMatchAFilter) {
  Book book = three();
  EXPECT_THAT(ids(book.entries({.from = money::Day("2026-11-01")})), ElementsAre(1, 2));
  EXPECT_THAT(ids(book.entries({.to = money::Day("2026-11-01")})), ElementsAre(2, 3));
  EXPECT_THAT(ids(book.entries({.from = money::Day("2026-11-01"), .to = money::Day("2026-11-29")})),
              ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.category = "eating OUT"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.category = "eating"})), IsEmpty());
  EXPECT_THAT(ids(book.entries({.search = "rail"})), ElementsAre(3));
  EXPECT_THAT(ids(book.entries({.search = "50%"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.search = "%"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.search = "F_7"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.search = "S_r"})), IsEmpty());
  EXPECT_THAT(ids(book.entries({.state = LedgerEntry::State::review})), IsEmpty());
}

TEST_F(AStoredBook, TellsTheIdsAndDaysOfTheEntriesThatMatchAFilter) {
  Book book = three();
  const auto placesOf = [&](const EntryFilter& filter) {
    std::vector<std::pair<std::int64_t, std::string>> places;
    for (const auto& [id, date] : book.places(filter)) places.emplace_back(id, date.text());
    return places;
  };
  EXPECT_THAT(placesOf({}),
              ElementsAre(Pair(1, "2026-11-30"), Pair(2, "2026-11-01"), Pair(3, "2026-10-31")));
  EXPECT_THAT(placesOf({.search = "rail"}), ElementsAre(Pair(3, "2026-10-31")));
  EXPECT_THAT(placesOf({.most = 1}), ElementsAre(Pair(1, "2026-11-30")));
}

TEST_F(AStoredBook, NoticesTheChangesOfOthersAlone) {
  Book book = three();
  const auto before = book.changesByOthers();
  ASSERT_TRUE(book.remove(1));
  EXPECT_EQ(book.changesByOthers(), before);
  ASSERT_TRUE(open().remove(2));
  EXPECT_NE(book.changesByOthers(), before);
  EXPECT_EQ(book.path(), file());
}

TEST_F(AStoredBook, ListsTheStandardCategoriesAndItsOwn) {
  const auto categories = three().categories();
  EXPECT_THAT(categories, testing::Contains("Eating out"));
  EXPECT_THAT(categories, testing::Contains("Utilities"));
  EXPECT_THAT(categories, Not(testing::Contains("Credit Card Settlement")));
  EXPECT_TRUE(std::is_sorted(categories.begin(), categories.end()));
}

TEST_F(AStoredBook, FindsASumInTheCurrencyOfEachEntryBesideTexts) {
  Book book = open();
  recorded(book, "KEY-1", spent(118950, "Rent"));
  recorded(book, "KEY-2", spent(118950, "Yen Shop", "JPY"));
  recorded(book, "KEY-3", spent(1189500, "Dinar Shop", "KWD"));
  recorded(book, "KEY-4", spent(100, "Shop 1189.50"));
  EXPECT_THAT(ids(book.entries({.search = "1189.50"})), ElementsAre(4, 3, 1));
  EXPECT_THAT(ids(book.entries({.search = "1,189.5"})), ElementsAre(3, 1));
  EXPECT_THAT(ids(book.entries({.search = "118950"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.search = "1189.501"})), IsEmpty());
  EXPECT_THAT(ids(book.entries({.search = "189.50"})), ElementsAre(4));
}

TEST_F(AStoredBook, ComparesSumsWithinTheCurrencyOfEachEntry) {
  Book book = open();
  recorded(book, "KEY-1", spent(1000));
  recorded(book, "KEY-2", spent(1050));
  recorded(book, "KEY-3", spent(10, "Yen Shop", "JPY"));
  recorded(book, "KEY-4", spent(11, "Yen Shop", "JPY"));
  EXPECT_THAT(ids(book.entries({.least = "10"})), ElementsAre(4, 3, 2, 1));
  EXPECT_THAT(ids(book.entries({.least = "10.5"})), ElementsAre(4, 2));
  EXPECT_THAT(ids(book.entries({.largest = "10.5"})), ElementsAre(3, 2, 1));
  EXPECT_THAT(ids(book.entries({.least = "10.01", .largest = "10.99"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.least = "11", .largest = "10"})), IsEmpty());
  EXPECT_THAT(ids(book.entries({.least = "99999999999999999999"})), IsEmpty());
}

TEST_F(AStoredBook, ListsTheEntriesOfAKindAndOfAnAccount) {
  Book book = open();
  Reading reading = spent(100);
  reading.account = "4821";
  recorded(book, "KEY-1", reading);
  reading.kind = Kind::income;
  reading.account = "21";
  recorded(book, "KEY-2", reading);
  EXPECT_THAT(ids(book.entries({.kind = Kind::expense})), ElementsAre(1));
  EXPECT_THAT(ids(book.entries({.kind = Kind::income})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.account = "21"})), ElementsAre(2));
  EXPECT_THAT(ids(book.entries({.kind = Kind::expense, .account = "21"})), IsEmpty());
}

TEST_F(AStoredBook, FindsABackslash) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "Fish\\Chips"));
  recorded(book, "KEY-2", spent(200, "50% Store"));
  EXPECT_THAT(ids(book.entries({.search = "\\"})), ElementsAre(1));
}

TEST_F(AStoredBook, EditsOnlyTheGivenMembers) {
  Book book = open();
  const LedgerEntry before = recorded(book, "KEY-1", spent(100));
  EXPECT_TRUE(book.edit(1, {.date = money::Day("2026-01-02"), .kind = Kind::transfer}));
  LedgerEntry after = book.entry(1).value();
  EXPECT_EQ(after.date, money::Day("2026-01-02"));
  EXPECT_EQ(after.kind, Kind::transfer);
  EXPECT_EQ(after.amount, before.amount);
  EXPECT_EQ(after.description, before.description);
  EXPECT_TRUE(book.edit(1, {.amount = Money{5, "JPY"}}));
  EXPECT_EQ(book.entry(1)->amount, (Money{5, "JPY"}));
  EXPECT_FALSE(book.edit(2, {.date = money::Day("2026-01-02")}));
}

TEST_F(AStoredBook, AcceptsAnEntryInReviewWhenItHasAnAmount) {
  Book book = open();
  Reading reading = spent(100);
  reading.outcome = Outcome::needsReview;
  recorded(book, "KEY-1", reading);
  reading.amount.reset();
  recorded(book, "KEY-2", reading);
  EXPECT_TRUE(accept(book, 1));
  EXPECT_FALSE(accept(book, 2));
  EXPECT_FALSE(accept(book, 3));
  EXPECT_THAT(ids(book.entries({})), ElementsAre(1));
  ASSERT_TRUE(book.edit(2, {.amount = Money{7, "EGP"}}));
  EXPECT_TRUE(accept(book, 2));
}

TEST_F(AStoredBook, ConvertsAForeignAmountOnAcceptWhenARateIsSet) {
  Book book = open();
  Reading foreign = spent(1000, "Sunny Market", "USD");
  foreign.outcome = Outcome::needsReview;
  recorded(book, "KEY-1", foreign);
  recorded(book, "KEY-2", foreign);
  const auto asShown = accept(book, 1).value();
  EXPECT_EQ(asShown.amount, (Money{1000, "USD"}));
  EXPECT_FALSE(asShown.rate);

  book.setRate("USD", rate("48.5"));
  const auto converted = accept(book, 2).value();
  EXPECT_EQ(converted.amount, (Money{48500, "EGP"}));
  EXPECT_EQ(converted.rate->text(), "48.5");
  EXPECT_EQ(book.entry(2)->amount, (Money{48500, "EGP"}));
  EXPECT_EQ(book.entry(2)->state, LedgerEntry::State::booked);
}

TEST_F(AStoredBook, KeepsTheAmountOfABookedEntryThatIsAcceptedAgain) {
  Book book = open();
  Reading foreign = spent(1000, "Sunny Market", "USD");
  foreign.outcome = Outcome::needsReview;
  recorded(book, "KEY-1", foreign);
  accept(book, 1);
  book.setRate("USD", rate("48.5"));
  EXPECT_EQ(accept(book, 1)->amount, (Money{1000, "USD"}));
  EXPECT_EQ(book.entry(1)->amount, (Money{1000, "USD"}));
}

TEST_F(AStoredBook, ErasesTheTextOfADeletedEntryFromItsFiles) {
  Book book = open();
  Message secret = message("KEY-1");
  secret.text = "SECRET text of a message";
  record(book, secret);
  recorded(book, "KEY-2", spent(100));
  ASSERT_THAT(testkit::bytesIn(file().parent_path()), HasSubstr("SECRET"));
  EXPECT_TRUE(book.remove(1));
  EXPECT_FALSE(book.remove(1));
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), Not(HasSubstr("SECRET")));
  EXPECT_THAT(ids(book.entries({})), ElementsAre(2));
}

TEST_F(AStoredBook, MarksDuplicatesOfADeletedEntryAsThoseOfTheFirstOfThem) {
  Book book = open();
  for (const char* const key : {"KEY-1", "KEY-2", "KEY-3", "KEY-4"}) {
    recorded(book, key, spent(100));
  }
  ASSERT_TRUE(book.remove(1));
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, std::nullopt);
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, 2);
  ASSERT_TRUE(book.remove(3));
  EXPECT_EQ(book.entry(4)->possibleDuplicateOf, 2);
}

TEST_F(AStoredBook, ErasesForgottenTextsFromItsFiles) {
  Book book = three();
  EXPECT_EQ(book.forgetTexts().ofEntries, 3);
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), Not(HasSubstr("text of")));
  EXPECT_FALSE(book.entry(1)->text);
  EXPECT_EQ(book.entry(1)->description, "Sunny Market");
  EXPECT_EQ(book.forgetTexts().ofEntries, 0);
}

TEST_F(AStoredBook, StoresRates) {
  Book book = open();
  book.setRate("USD", rate("48.5"));
  book.setRate("EUR", rate("52"));
  book.setRate("USD", rate("49"));
  EXPECT_THAT(book.rates(), ElementsAre(StoredRate{"EUR", "", "52"}, StoredRate{"USD", "", "49"}));
  EXPECT_TRUE(book.removeRate("USD"));
  EXPECT_FALSE(book.removeRate("USD"));
}

TEST_F(AStoredBook, TakesTheRateThatHoldsOnADay) {
  Book book = open();
  book.setRate("USD", rate("48.5"), money::Day("2026-03-01"));
  EXPECT_FALSE(book.rate("USD", money::Day("2026-02-28")));
  book.setRate("USD", rate("30.9"));
  book.setRate("USD", rate("50"), money::Day("2026-06-01"));
  EXPECT_EQ(book.rate("USD", money::Day("2026-02-28"))->text(), "30.9");
  EXPECT_EQ(book.rate("USD", money::Day("2026-03-01"))->text(), "48.5");
  EXPECT_EQ(book.rate("USD", money::Day("2026-05-31"))->text(), "48.5");
  EXPECT_EQ(book.rate("USD", money::Day("2030-01-01"))->text(), "50");
  EXPECT_FALSE(book.rate("EUR", money::Day("2026-06-01")));
}

TEST_F(AStoredBook, RemovesTheRatesOfOneDayOrAll) {
  Book book = open();
  book.setRate("USD", rate("30.9"));
  book.setRate("USD", rate("48.5"), money::Day("2026-03-01"));
  book.setRate("USD", rate("50"), money::Day("2026-06-01"));
  EXPECT_FALSE(book.removeRate("USD", money::Day("2026-04-01")));
  EXPECT_TRUE(book.removeRate("USD", money::Day("2026-06-01")));
  EXPECT_EQ(book.rate("USD", money::Day("2026-07-01"))->text(), "48.5");
  EXPECT_TRUE(book.removeRate("USD"));
  EXPECT_THAT(book.rates(), IsEmpty());
}

TEST_F(AStoredBook, DoesNotOpenWhenItIsNewerForeignOrDamaged) {
  open();
  const std::string newer = "PRAGMA user_version = " + std::to_string(bookVersion() + 1);
  for (const std::string& sql : {newer, std::string("PRAGMA application_id = 7")}) {
    testkit::RawStore(file()).run(sql);
    EXPECT_THAT([] { Book::open(); }, ThrowsMessage<BookFailure>(HasSubstr(file().string())))
        << sql;
  }
  fs::remove_all(file().parent_path());
  fs::create_directories(file().parent_path());
  std::ofstream(file()) << "no database, but a text of some length";
  EXPECT_THAT([] { Book::open(); }, ThrowsMessage<BookFailure>(HasSubstr("is not a database")));
}

}  // namespace
}  // namespace kivo::book
