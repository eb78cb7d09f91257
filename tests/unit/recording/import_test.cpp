// Imports of old messages: what the book knows already, and what is counted.
#include "recording/import.h"

#include <gmock/gmock.h>

#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::recording {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AnImport : public LedgerTest {
 protected:
  struct Imported {
    std::string key;
    money::Day day;
    std::string text = "coffee";
  };

  ImportCounts import(Book& book, const std::vector<Imported>& messages,
                      Import::Mode mode = Import::Mode::record) {
    Import importing(book, {.userId = "user",
                            .currency = "EGP",
                            .read = [this](auto, const auto&) { return reading_; },
                            .importKeys = "import-",
                            .command = {.words = "import file"},
                            .mode = mode});
    for (const Imported& one : messages) importing.expect(messageOf(one));
    for (const Imported& one : messages) importing.add(messageOf(one));
    importing.finish();
    return importing.counts();
  }
  // A message from the modem.
  void receive(Book& book, const std::string& key, const money::Day& day,
               const std::string& text = "coffee") {
    record(book, {.text = text, .userId = "user", .expenseDate = day, .idempotencyKey = key});
  }
  static std::vector<std::string> bookedDays(const Book& book) {
    std::vector<std::string> days;
    for (const LedgerEntry& entry : book.entries({})) days.push_back(entry.date.text());
    return days;
  }

 private:
  static Message messageOf(const Imported& one) {
    return {.text = one.text,
            .userId = "user",
            .expenseDate = one.day,
            .idempotencyKey = "import-" + one.key};
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 22, 12)};
};

TEST_F(AnImport, BooksEachMessageUnderItsDay) {
  Book book = open();
  const ImportCounts counts =
      import(book, {{"1", "2024-02-29"}, {"2", "2025-01-31"}, {"3", "2025-01-31"}});
  EXPECT_EQ(counts.booked, 3);
  EXPECT_EQ(counts.messages(), 3);
  EXPECT_THAT(bookedDays(book), ElementsAre("2025-01-31", "2025-01-31", "2024-02-29"));
}

TEST_F(AnImport, AddsNothingTheSecondTime) {
  Book book = open();
  const std::vector<Imported> messages = {{"1", "2026-11-20"}, {"2", "2026-11-20"}};
  import(book, messages);
  const ImportCounts again = import(book, messages);
  EXPECT_EQ(again.known, 2);
  EXPECT_EQ(again.messages(), 2);
  EXPECT_THAT(book.entries({}), SizeIs(2));
}

TEST_F(AnImport, CountsWhatIsNotBooked) {
  Book book = open();
  reading_.outcome = Outcome::needsReview;
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}}).review, 1);
  reading_.outcome = Outcome::declined;
  EXPECT_EQ(import(book, {{"2", "2026-11-20"}}).declined, 1);
  reading_ = {};
  EXPECT_EQ(import(book, {{"3", "2026-11-20"}}).ignored, 1);
  EXPECT_EQ(import(book, {{"3", "2026-11-20"}}).known, 1);
}

TEST_F(AnImport, DoesNotBookWhatCameLiveTheSameDayOrOneBesideIt) {
  for (const char* const day : {"2026-11-19", "2026-11-20", "2026-11-21"}) {
    Book book = open();
    receive(book, std::string("KEY-") + day, "2026-11-20", std::string("text of ") + day);
    EXPECT_EQ(
        import(book, {{day, *money::Day::fromText(day), std::string("text of ") + day}}).known, 1)
        << day;
  }
}

TEST_F(AnImport, BooksWhatCameLiveTwoDaysFromIt) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  EXPECT_EQ(import(book, {{"1", "2026-11-18"}, {"2", "2026-11-22"}}).booked, 2);
}

TEST_F(AnImport, BooksTheSecondOfTwoEqualMessagesOfWhichOneCameLive) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  const std::vector<Imported> coffees = {{"1", "2026-11-20"}, {"2", "2026-11-20"}};
  const ImportCounts counts = import(book, coffees);
  EXPECT_EQ(counts.known, 1);
  EXPECT_EQ(counts.booked, 1);
  EXPECT_EQ(import(book, coffees).known, 2);
  EXPECT_THAT(book.entries({}), SizeIs(2));
}

TEST_F(AnImport, BooksOfACoffeeADayTheOneOfTheDayThatIsMissing) {
  Book book = open();
  receive(book, "KEY-2", "2026-11-19");
  receive(book, "KEY-3", "2026-11-20");
  const ImportCounts counts =
      import(book, {{"1", "2026-11-18"}, {"2", "2026-11-19"}, {"3", "2026-11-20"}});
  EXPECT_EQ(counts.known, 2);
  EXPECT_EQ(counts.booked, 1);
  EXPECT_THAT(bookedDays(book), ElementsAre("2026-11-20", "2026-11-19", "2026-11-18"));
}

TEST_F(AnImport, KnowsAMessageThatTwoFilesHave) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}, {"1", "2026-11-20"}}).known, 2);
  const ImportCounts counts = import(book, {{"2", "2026-10-20"}, {"2", "2026-10-20"}});
  EXPECT_EQ(counts.booked, 1);
  EXPECT_EQ(counts.known, 1);
}

TEST_F(AnImport, DoesNotBookWhatWasDeletedOrForgotten) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  receive(book, "KEY-2", "2026-11-19");
  book.remove(1);
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}}).known, 1);
  book.forgetTexts();
  EXPECT_EQ(import(book, {{"2", "2026-11-19"}}).known, 1);
  EXPECT_THAT(bookedDays(book), ElementsAre("2026-11-19"));
}

TEST_F(AnImport, BooksWhatDiffersFromADeletedPayment) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  book.remove(1);
  reading_ = spent(15001);
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}}).booked, 1);
  reading_ = spent(15000, "Another Market");
  EXPECT_EQ(import(book, {{"2", "2026-11-20"}}).booked, 1);
  reading_ = spent(15000);
  EXPECT_EQ(import(book, {{"3", "2026-11-21"}}).booked, 1);
}

TEST_F(AnImport, KnowsAMessageWhoseTransactionWasMovedToAnotherDay) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  book.edit(1, {.date = money::Day("2026-10-01"), .description = "Moved"});
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}}).known, 1);
}

TEST_F(AnImport, KnowsAnIgnoredMessage) {
  Book book = open();
  reading_ = {.outcome = Outcome::notATransaction, .holdsSum = true};
  receive(book, "KEY-1", "2026-11-20");
  EXPECT_EQ(import(book, {{"1", "2026-11-20"}}).known, 1);
  EXPECT_THAT(book.ignored(), SizeIs(1));
}

TEST_F(AnImport, OnlyCountsInADryRun) {
  Book book = open();
  receive(book, "KEY-1", "2026-11-20");
  const std::vector<Imported> messages = {
      {"1", "2026-11-20"}, {"2", "2026-11-20"}, {"3", "2025-01-01"}, {"3", "2025-01-01"}};
  const ImportCounts counts = import(book, messages, Import::Mode::dryRun);
  EXPECT_EQ(counts.booked, 2);
  EXPECT_EQ(counts.known, 2);
  EXPECT_THAT(book.entries({}), SizeIs(1));
  EXPECT_THAT(book.history(), IsEmpty());
  EXPECT_EQ(import(book, messages).booked, 2);
}

TEST_F(AnImport, OfManyMessagesIsOneCommandThatCanBeUndone) {
  Book book = open();
  std::vector<Imported> messages;
  for (int number = 0; number < 4'500; ++number) {
    messages.push_back({std::to_string(number), "2025-01-01", "text " + std::to_string(number)});
  }
  EXPECT_EQ(import(book, messages).booked, 4'500);
  ASSERT_THAT(book.history(), SizeIs(1));
  EXPECT_EQ(book.history().front().transactions, 4'500);
  book.undo(1);
  EXPECT_THAT(book.entries({}), IsEmpty());
  EXPECT_EQ(import(book, messages).booked, 4'500);
}

}  // namespace
}  // namespace kivo::recording
