// Messages that were not booked though they hold a sum: how long the book keeps them.
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include "testkit/set_clock.h"
#include "testkit/stored_bytes.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recording::LedgerTest;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testkit::bytesIn;
using testkit::utc;

class AnIgnoredMessage : public LedgerTest {
 protected:
  static void keep(Book& book, const std::string& key, const money::Day& date = "2026-11-21") {
    book.keepIgnored(
        {.key = key, .userId = "user", .date = date, .text = "ignored text of " + key});
  }
  static std::vector<std::int64_t> numbers(const Book& book) {
    std::vector<std::int64_t> found;
    for (const IgnoredMessage& message : book.ignored()) found.push_back(message.number);
    return found;
  }
  [[nodiscard]] std::string bytes() const { return bytesIn(file().parent_path()); }

  testkit::SetClock clock_{utc(2026, 11, 22, 12)};
};

TEST_F(AnIgnoredMessage, IsKeptAsItCame) {
  open().keepIgnored({.key = "KEY-1",
                      .userId = "user",
                      .date = "2026-11-21",
                      .reason = IgnoredMessage::Reason::declined,
                      .text = "two\nlines"});
  const auto kept = open().ignored(1);
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->number, 1);
  EXPECT_EQ(kept->key, "KEY-1");
  EXPECT_EQ(kept->userId, "user");
  EXPECT_EQ(kept->date, money::Day("2026-11-21"));
  EXPECT_EQ(kept->reason, IgnoredMessage::Reason::declined);
  EXPECT_EQ(kept->text, "two\nlines");
  EXPECT_FALSE(open().ignored(2));
}

TEST_F(AnIgnoredMessage, IsListedNewestFirst) {
  Book book = open();
  keep(book, "KEY-1", "2026-11-20");
  keep(book, "KEY-2", "2026-11-22");
  keep(book, "KEY-3", "2026-11-20");
  EXPECT_THAT(numbers(book), ElementsAre(2, 3, 1));
  EXPECT_EQ(book.ignoredCount(), 3);
}

TEST_F(AnIgnoredMessage, IsKeptUntilThirtyDaysAfterItsDay) {
  Book book = open();
  keep(book, "KEY-1", "2026-10-23");
  EXPECT_THAT(numbers(book), ElementsAre(1));
  EXPECT_EQ(book.ignoredCount(), 1);
  clock_.advance(std::chrono::hours(24));
  EXPECT_THAT(numbers(book), IsEmpty());
  EXPECT_EQ(book.ignoredCount(), 0);
  EXPECT_FALSE(book.ignored(1));
}

TEST_F(AnIgnoredMessage, IsErasedFromTheFileByTheNextChangeAfterThat) {
  Book book = open();
  keep(book, "KEY-1", "2026-11-21");
  keep(book, "KEY-2", "2026-11-22");
  clock_.set(utc(2026, 12, 22, 12));
  EXPECT_THAT(bytes(), HasSubstr("ignored text of KEY-1"));
  book.setRate("USD", rate("48.5"));
  EXPECT_THAT(bytes(), Not(HasSubstr("ignored text of KEY-1")));
  EXPECT_THAT(bytes(), HasSubstr("ignored text of KEY-2"));
  clock_.advance(std::chrono::hours(24));
  recorded(book, "KEY-3", spent(100), "2026-12-22");
  EXPECT_THAT(bytes(), Not(HasSubstr("ignored text of")));
}

TEST_F(AnIgnoredMessage, IsNotKeptWhenItsDayIsLongAgo) {
  Book book = open();
  keep(book, "KEY-1", "2026-10-22");
  EXPECT_THAT(bytes(), Not(HasSubstr("ignored text of")));
}

TEST_F(AnIgnoredMessage, HasANumberThatIsNeverGivenAgain) {
  Book book = open();
  keep(book, "KEY-1");
  keep(book, "KEY-2");
  EXPECT_TRUE(book.removeIgnored(2));
  EXPECT_FALSE(book.removeIgnored(2));
  keep(book, "KEY-3");
  EXPECT_THAT(numbers(book), ElementsAre(3, 1));
}

TEST_F(AnIgnoredMessage, IsErasedFromTheFileWhenItIsRemoved) {
  Book book = open();
  keep(book, "KEY-1");
  ASSERT_TRUE(book.removeIgnored(1));
  EXPECT_THAT(bytes(), Not(HasSubstr("ignored text of")));
}

TEST_F(AnIgnoredMessage, IsErasedFromTheFileWhenTextsAreForgotten) {
  Book book = open();
  keep(book, "KEY-1");
  keep(book, "KEY-2");
  recorded(book, "KEY-3", spent(100));
  const ForgottenTexts forgotten = book.forgetTexts();
  EXPECT_EQ(forgotten.ofEntries, 1);
  EXPECT_EQ(forgotten.ofIgnored, 2);
  EXPECT_THAT(numbers(book), IsEmpty());
  EXPECT_THAT(bytes(), Not(HasSubstr("text of")));
  EXPECT_EQ(book.entries({}).size(), 1U);
}

TEST_F(AnIgnoredMessage, GivesWayToLaterOnesWhenAFloodComes) {
  Book book = open();
  book.inOneStep([&] {
    for (int number = 1; number <= 500; ++number) keep(book, std::to_string(number));
  });
  EXPECT_EQ(book.ignoredCount(), 500);
  keep(book, "501");
  EXPECT_EQ(book.ignoredCount(), 400);
  EXPECT_EQ(book.ignored(501)->key, "501");
  EXPECT_FALSE(book.ignored(101));
  EXPECT_TRUE(book.ignored(102));
  EXPECT_THAT(bytes(), Not(HasSubstr("ignored text of 100")));
}

TEST_F(AnIgnoredMessage, IsNamedAndLeftOutWhenItsDayOrReasonCannotBe) {
  Book book = open();
  for (const char* const key : {"KEY-1", "KEY-2", "KEY-3"}) keep(book, key);
  raw("UPDATE ignored SET date = '2026-11-3x' WHERE number = 1;"
      "UPDATE ignored SET reason = 'odd' WHERE number = 3");
  testing::internal::CaptureStderr();
  EXPECT_THAT(numbers(book), ElementsAre(2));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("the values of these ignored messages cannot be: 1, 3"));
  EXPECT_FALSE(book.ignored(1));
  EXPECT_EQ(book.forgetTexts().ofIgnored, 3);
  EXPECT_THAT(numbers(book), IsEmpty());
}

class AStep : public LedgerTest {};

TEST_F(AStep, TakesInTheChangesWithinIt) {
  Book book = open();
  recorded(book, "KEY-1", spent(100));
  const auto steps = [&] {
    EXPECT_TRUE(book.edit(1, {.category = "Fun"}));
    book.inOneStep([&] { EXPECT_TRUE(book.remove(1)); });
    throw std::runtime_error("the disk is full");
  };
  EXPECT_THROW(book.inOneStep(steps), std::runtime_error);
  ASSERT_TRUE(book.entry(1));
  EXPECT_EQ(book.entry(1)->category, "Groceries");
  EXPECT_EQ(book.entry(1)->text, "text of KEY-1");
  ASSERT_TRUE(book.edit(1, {.category = "Fun"}));  // in a step of its own
  EXPECT_EQ(open().entry(1)->category, "Fun");
}

TEST(TheReasonOfAnIgnoredMessage, HasTheNameThatItHasInTheAnswer) {
  EXPECT_STREQ(reasonText(IgnoredMessage::Reason::declined), "declined");
  EXPECT_STREQ(reasonText(IgnoredMessage::Reason::notATransaction), "not_a_transaction");
  EXPECT_FALSE(reasonFromText("needs_review"));
}

}  // namespace
}  // namespace kivo::book
