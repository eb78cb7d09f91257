// Commands that are taken back: the book is as it was before them.
#include <functional>
#include <string>

#include <gmock/gmock.h>

#include "book/user_command.h"
#include "platform/linux/foundation/failure.h"
#include "testkit/set_clock.h"
#include "testkit/stored_bytes.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recognition::Outcome;
using recognition::Reading;
using recording::LedgerTest;

using money::Kind;
using money::Money;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testkit::utc;

namespace {

constexpr std::int64_t all = 1'000'000;

class ACommand : public LedgerTest {
 protected:
  // All that a person sees of the book, with the answers.
  std::string dump() {
    return raw(R"(
      SELECT * FROM transactions ORDER BY id;
      SELECT number, payee, written, has_wildcard, description, category, kind FROM rules;
      SELECT * FROM rates; SELECT * FROM budgets; SELECT * FROM categories; SELECT * FROM answers;
      SELECT number, user, key, date, reason, text FROM ignored WHERE taken_by IS NULL)");
  }
  std::string dumpWithoutTexts() {
    return raw(R"(
      CREATE TEMP TABLE seen AS SELECT * FROM transactions ORDER BY id;
      UPDATE seen SET text = NULL; SELECT * FROM seen; DROP TABLE seen)");
  }

  static void run(Book& book, const std::string& words, const std::function<void()>& steps) {
    UserCommand command{words};
    book.asCommand(command, steps);
  }

  testkit::SetClock clock_{utc(2026, 11, 22, 12)};

  // Three entries, of which the last is in review in another currency and the second looks like the
  // first; and an ignored message.
  void fill(Book& book) {
    recorded(book, "KEY-1", spent(15000, "Cafe Nilo"));
    recorded(book, "KEY-2", spent(15000, "Cafe Nilo"));
    Reading foreign = spent(2000, "Hotel", "USD");
    foreign.outcome = Outcome::needsReview;
    recorded(book, "KEY-3", foreign);
    book.setRate("EUR", rate("52"), money::Day("2026-03-01"));
    Reading none;
    none.holdsSum = true;
    reading_ = none;
    record(book, message("KEY-4"));
    book.setBudget({"Groceries", {300000, "EGP"}});
    book.setBudget({"Groceries", {310000, "EGP"}, money::Month("2026-12")});
  }
};

TEST_F(ACommand, IsTakenBackWhateverItChanged) {
  Book book = open();
  fill(book);
  const auto edits = [&] {
    book.edit(1, {.date = money::Day("2026-10-01"),
                  .kind = Kind::income,
                  .amount = Money{99, "EGP"},
                  .description = "Mine",
                  .category = "Treats"});
    correct(book, 1, {.category = "Others"});
  };
  const std::vector<std::function<void()>> commands = {
      edits,
      [&] { correct(book, 2, {.category = "Treats"}); },
      [&] {
        book.bookWith(3, {97000, "EGP"}, Money{2000, "USD"});
      },
      [&] { book.setRate("USD", rate("48.5")); },
      [&] {
        book.setRate("USD", rate("48.5"), money::Day("2026-03-01"));
        book.setRate("USD", rate("49"), money::Day("2026-06-01"));
        book.setRate("USD", rate("50"), money::Day("2026-03-01"));
      },
      [&] {
        book.setRate("EUR", rate("53"));
        book.removeRate("EUR", money::Day("2026-03-01"));
      },
      [&] { book.removeRate("EUR"); },
      [&] {
        book.setBudget({"Dining", {90000, "EGP"}, money::Month("2026-12")});
        book.setBudget({"Groceries", {350000, "EGP"}});
      },
      [&] { book.removeBudget("Groceries", {}); },
      [&] {
        LedgerEntry entry = book.entry(1).value();
        entry.key = "by-hand";
        entry.category = "New:One";
        book.add(book.fitted(entry));
      },
      [&] { book.removeIgnored(1); },
  };
  for (const auto& command : commands) {
    const std::string before = dump();
    run(book, "changes", command);
    EXPECT_NE(dump(), before);
    EXPECT_EQ(book.undo(1).size(), 1U);
    EXPECT_EQ(dump(), before);
    EXPECT_THAT(book.history(), IsEmpty());
  }
}

TEST_F(ACommand, IsTakenBackAfterTheCommandsThatFollowedIt) {
  Book book = open();
  fill(book);
  const std::string before = dump();
  run(book, "first", [&] { correct(book, 1, {.category = "One"}); });
  run(book, "second", [&] { correct(book, 1, {.category = "Two"}); });
  run(book, "third", [&] { book.setRate("USD", rate("50")); });
  const auto undone = book.undo(all);
  ASSERT_EQ(undone.size(), 3U);
  EXPECT_EQ(undone[0].words, "third");
  EXPECT_EQ(undone[0].rates, 1);
  EXPECT_EQ(undone[2].words, "first");
  EXPECT_EQ(undone[2].transactions, 1);
  EXPECT_EQ(undone[2].rules, 1);
  EXPECT_EQ(dump(), before);
}

TEST_F(ACommand, GivesADeletedTransactionBackWithoutItsText) {
  Book book = open();
  fill(book);
  const std::string before = dumpWithoutTexts();
  run(book, "delete 1", [&] { book.remove(1); });
  EXPECT_FALSE(book.entry(2)->possibleDuplicateOf);
  const auto undone = book.undo(1);
  EXPECT_EQ(undone.front().deleted, 1);
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, 1);
  EXPECT_EQ(dumpWithoutTexts(), before);
  EXPECT_FALSE(book.entry(1)->text);
  EXPECT_TRUE(book.entry(2)->text);
}

TEST_F(ACommand, LeavesThoseAlikeByReferenceMarkedWhenItIsTakenBack) {
  Book book = open();
  Reading reading = spent(100);
  reading.reference = "R1";
  const auto first = recorded(book, "one", reading, "2026-11-01").id;
  const auto later = recorded(book, "two", reading, "2026-11-21").id;
  ASSERT_EQ(book.entry(later)->possibleDuplicateOf, first);
  UserCommand command{.words = "delete"};
  book.asCommand(command, [&] { book.remove(first); });
  EXPECT_FALSE(book.entry(later)->possibleDuplicateOf);
  book.undo(1);
  EXPECT_EQ(book.entry(later)->possibleDuplicateOf, first);
}

TEST_F(ACommand, LeavesForgottenTextsForgotten) {
  Book book = open();
  fill(book);
  run(book, "edit 1", [&] { correct(book, 1, {.category = "Treats"}); });
  run(book, "forget-texts", [&] { book.forgetTexts(); });
  ASSERT_EQ(book.history().size(), 2U);
  EXPECT_EQ(book.undo(2).size(), 2U);
  EXPECT_EQ(book.entry(1)->category, "Groceries");
  EXPECT_FALSE(book.entry(1)->text);
}

TEST_F(ACommand, LeavesWhatTheServiceRecordedMeanwhile) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "Cafe"));
  run(book, "edit 1", [&] { correct(book, 1, {.category = "Treats"}); });
  const LedgerEntry later = recorded(book, "KEY-2", spent(200, "Cafe"));
  EXPECT_EQ(later.category, "Treats");
  book.undo(1);
  EXPECT_EQ(book.entry(later.id)->category, "Treats");
  EXPECT_EQ(recorded(book, "KEY-3", spent(300, "Cafe")).category, "Groceries");
}

TEST_F(ACommand, CanBookItsMessagesAgainAfterItWasTakenBack) {
  Book book = open();
  UserCommand import{"import"};
  for (const char* const key : {"KEY-1", "KEY-2"}) {
    book.asCommand(import, [&] { record(book, message(key)); });
  }
  ASSERT_EQ(book.history().size(), 1U);
  EXPECT_EQ(book.history().front().transactions, 2);
  const LedgerEntry live = recorded(book, "LIVE", spent(15000));
  EXPECT_EQ(live.possibleDuplicateOf, 1);
  book.undo(1);
  EXPECT_FALSE(book.answer("user", "KEY-1"));
  EXPECT_FALSE(book.entry(live.id)->possibleDuplicateOf);
  EXPECT_EQ(recorded(book, "KEY-1", spent(15000)).id, 4);  // an ID is never used again
}

TEST_F(ACommand, TakesTheMessagesBackThatItPutAside) {
  Book book = open();
  Reading none;
  none.holdsSum = true;
  reading_ = none;
  run(book, "import", [&] { record(book, message("KEY-1")); });
  ASSERT_EQ(book.ignoredCount(), 1);
  book.undo(1);
  EXPECT_EQ(book.ignoredCount(), 0);
}

TEST_F(ACommand, OfSeveralStepsFailsWhenItWasTakenBackBetweenThem) {
  Book book = open();
  UserCommand import{"import"};
  book.asCommand(import, [&] { record(book, message("KEY-1")); });
  book.undo(1);
  EXPECT_THROW(book.asCommand(import, [&] { record(book, message("KEY-2")); }),
               linux_platform::Failure);
  EXPECT_FALSE(book.answer("user", "KEY-2"));
}

TEST_F(ACommand, ThatChangesNothingOrFailsIsNotInTheHistory) {
  Book book = open();
  fill(book);
  UserCommand command{"nothing"};
  book.asCommand(command, [] {});
  EXPECT_FALSE(command.number);
  EXPECT_THROW(book.asCommand(command,
                              [&] {
                                correct(book, 1, {.category = "Treats"});
                                throw std::runtime_error("stopped");
                              }),
               std::runtime_error);
  EXPECT_THAT(book.history(), IsEmpty());
  EXPECT_THAT(book.undo(1), IsEmpty());
}

TEST_F(ACommand, IsKeptForItsTemplateAlone) {
  Book book = open();
  UserCommand teach{"teach -", "\n[[template]]\n"};
  book.asCommand(teach, [] {});
  ASSERT_EQ(book.history().size(), 1U);
  EXPECT_EQ(book.undo(1).front().addedTemplate, "\n[[template]]\n");
}

TEST_F(ACommand, CanBeTakenBackForThirtyDays) {
  Book book = open();
  fill(book);
  clock_.set(utc(2026, 11, 1, 12));
  run(book, "old", [&] { correct(book, 1, {.category = "Treats"}); });
  clock_.set(utc(2026, 11, 30, 12));
  run(book, "new", [&] { correct(book, 2, {.category = "Treats"}); });
  EXPECT_EQ(book.history().size(), 2U);
  clock_.set(utc(2026, 12, 2, 12));
  run(book, "newest", [&] { correct(book, 2, {.category = "Other"}); });
  ASSERT_EQ(book.history().size(), 2U);
  EXPECT_EQ(book.history().back().words, "new");
  EXPECT_EQ(raw("SELECT DISTINCT command FROM past_transactions"), "2\n3\n");
}

TEST_F(ACommand, IsOneOfTheLastThousand) {
  Book book = open();
  recorded(book, "KEY-1", spent(100));
  book.inOneStep([&] {
    for (int nth = 0; nth < 1'005; ++nth) {
      run(book, "edit", [&] { book.edit(1, {.amount = Money{100 + nth, "EGP"}}); });
    }
  });
  EXPECT_EQ(book.history().size(), 1'000U);
  EXPECT_EQ(book.undo(all).size(), 1'000U);
  EXPECT_EQ(book.entry(1)->amount, (Money{104, "EGP"}));
}

TEST_F(ACommand, LeavesNoTextOfATransactionThatItAddedInTheFile) {
  Book book = open();
  run(book, "import", [&] { record(book, message("KEY-SECRET")); });
  book.undo(1);
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), Not(HasSubstr("text of KEY-SECRET")));
}

TEST_F(ACommand, KeepsTheTextOfABookedIgnoredMessageUntilItsEntryIsDeleted) {
  Book book = open();
  Reading none;
  none.holdsSum = true;
  reading_ = none;
  record(book, message("KEY-1"));
  run(book, "book 1", [&] {
    LedgerEntry entry;
    entry.key = "KEY-1";
    entry.userId = "user";
    entry.date = "2026-11-21";
    entry.amount = Money{100, "EGP"};
    book.add(entry);
    book.removeIgnored(1);
  });
  EXPECT_FALSE(book.ignored(1));
  EXPECT_THAT(book.ignored(), IsEmpty());
  book.remove(1);
  EXPECT_EQ(raw("SELECT count(*) FROM ignored"), "0\n");
}

}  // namespace
}  // namespace kivo::book
