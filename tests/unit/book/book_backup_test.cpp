// Backups of a book: written while it is open, and put in the place of one.
#include "book/book_backup.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "book/backup_file.h"
#include "book/current_day.h"
#include "platform/linux/foundation/failure.h"
#include "testkit/first_book.h"
#include "testkit/stored_bytes.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using linux_platform::Failure;
using recording::LedgerTest;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testkit::RawStore;

class ABookBackup : public LedgerTest {
 protected:
  [[nodiscard]] fs::path path() const { return folders_.home() / "book.kivo"; }
  HeldPayments backUp(const Book& book) const { return book.backUp(path(), settings_, "1.2"); }
  void restoreInto(Book& book) const {
    book.restore(Backup::read(path()), [] {});
  }
  [[nodiscard]] std::string bytes() const {
    std::ifstream stream(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void write(const std::string& bytes) const { std::ofstream(path(), std::ios::binary) << bytes; }
  // The sentence of the refusal to read the backup.
  [[nodiscard]] std::string refusal() const {
    try {
      Backup::read(path());
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "";
  }
  static std::vector<std::int64_t> ids(const Book& book) {
    std::vector<std::int64_t> found;
    for (const LedgerEntry& entry : book.entries({})) found.push_back(entry.id);
    return found;
  }

  BackedUpSettings settings_{
      .currency = "EGP", .templates = "# mine\n", .senders = std::string("x\0y", 3)};
};

TEST_F(ABookBackup, HoldsThePaymentsAndTheSettings) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000), "2026-11-21");
  recorded(book, "KEY-2", spent(700), "2026-08-03");
  const HeldPayments held = backUp(book);
  EXPECT_EQ(held.count, 2);
  EXPECT_EQ(held.first, money::Day("2026-08-03"));
  EXPECT_EQ(held.last, money::Day("2026-11-21"));
  const Backup backup = Backup::read(path());
  EXPECT_EQ(backup.settings(), settings_);
  EXPECT_EQ(backup.payments().count, 2);
  EXPECT_EQ(backup.payments().last, money::Day("2026-11-21"));
}

TEST_F(ABookBackup, IsReadableByItsOwnerAlone) {
  backUp(open());
  struct stat found {};
  ASSERT_EQ(stat(path().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0600U);
}

TEST_F(ABookBackup, IsWrittenWhileAnotherHandleWrites) {
  Book writing = open();
  recorded(writing, "KEY-1", spent(15000));
  writing.inOneStep([&] {
    writing.setRate("USD", rate("48.5"));
    EXPECT_EQ(backUp(open()).count, 1);
  });
  EXPECT_TRUE(writing.rate("USD", money::Day("2026-11-21")));
  Book other = open();
  restoreInto(other);
  EXPECT_FALSE(other.rate("USD", money::Day("2026-11-21")));
}

TEST_F(ABookBackup, HoldsNoDeletedText) {
  Book book = open();
  const auto first = recorded(book, "KEY-1", spent(15000));
  recorded(book, "KEY-2", spent(700));
  backUp(book);
  EXPECT_THAT(bytes(), HasSubstr("text of KEY-1"));
  book.remove(first.id);
  backUp(book);
  EXPECT_THAT(bytes(), Not(HasSubstr("text of KEY-1")));
  EXPECT_THAT(bytes(), HasSubstr("text of KEY-2"));
  book.forgetTexts();
  backUp(book);
  EXPECT_THAT(bytes(), Not(HasSubstr("text of KEY-2")));
}

TEST_F(ABookBackup, TakesThePlaceOfTheWholeBook) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  book.setRate("USD", rate("48.5"));
  book.edit(1, {.category = "Gifts"});
  book.keepIgnored({.key = "KEY-I", .userId = "user", .date = currentDay(), .text = "ignored"});
  backUp(book);
  const auto before = book.entry(1);
  book.remove(1);
  book.removeRate("USD");
  recorded(book, "KEY-2", spent(700));
  restoreInto(book);
  EXPECT_THAT(ids(book), ElementsAre(1));
  EXPECT_EQ(book.entry(1)->text, before->text);
  EXPECT_EQ(book.entry(1)->category, "Gifts");
  EXPECT_EQ(book.rates().size(), 1U);
  EXPECT_EQ(book.ignoredCount(), 1);
  EXPECT_TRUE(book.answer("user", "KEY-1"));
  EXPECT_FALSE(book.answer("user", "KEY-2"));
  EXPECT_EQ(RawStore(file()).run("PRAGMA integrity_check"), "ok\n");
}

TEST_F(ABookBackup, GivesNoNumberASecondTime) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  backUp(book);
  recorded(book, "KEY-2", spent(700));
  recorded(book, "KEY-3", spent(800));
  restoreInto(book);
  EXPECT_EQ(recorded(book, "KEY-4", spent(900)).id, 4);
  fs::remove_all(file().parent_path());
  Book empty = open();
  restoreInto(empty);
  EXPECT_EQ(recorded(empty, "KEY-5", spent(900)).id, 2);
}

TEST_F(ABookBackup, ErasesTheReplacedTexts) {
  Book book = open();
  backUp(book);
  recorded(book, "KEY-1", spent(15000));
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), HasSubstr("text of KEY-1"));
  restoreInto(book);
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), Not(HasSubstr("text of KEY-1")));
}

TEST_F(ABookBackup, LeavesNothingToUndo) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  UserCommand command{.words = "edit 1"};
  book.asCommand(command, [&] { book.edit(1, {.category = "Gifts"}); });
  backUp(book);
  ASSERT_EQ(book.history().size(), 1U);
  restoreInto(book);
  EXPECT_TRUE(book.history().empty());
  UserCommand next{.words = "edit 1"};
  book.asCommand(next, [&] { book.edit(1, {.category = "Toys"}); });
  EXPECT_EQ(next.number, 2);
}

TEST_F(ABookBackup, LeavesTheBookAloneWhenTheStepBeforeFails) {
  Book book = open();
  backUp(book);
  recorded(book, "KEY-1", spent(15000));
  EXPECT_THROW(book.restore(Backup::read(path()), [] { throw Failure("no"); }), Failure);
  EXPECT_THAT(ids(book), ElementsAre(1));
}

TEST_F(ABookBackup, IsUpgradedFromAnOlderBook) {
  testkit::makeFirstBook(path(), testkit::firstBookRow("OLD-1") + R"(
    PRAGMA journal_mode = DELETE;
    CREATE TABLE backup (
      book_version INTEGER NOT NULL, written TEXT NOT NULL, program TEXT NOT NULL,
      currency TEXT NOT NULL, templates TEXT NOT NULL, senders TEXT NOT NULL) STRICT;
    INSERT INTO backup VALUES (1, '2026-01-01T00:00:00Z', '0.0', 'USD', '', '');
    PRAGMA application_id = 1266041451;
    PRAGMA user_version = 1)");
  seal(path());
  ASSERT_EQ(refusal(), "");
  Book book = open();
  restoreInto(book);
  EXPECT_EQ(book.entry(1)->key, "OLD-1");
  EXPECT_EQ(Backup::read(path()).settings().currency, "USD");
  EXPECT_TRUE(book.isWhole());
}

TEST_F(ABookBackup, IsRefusedWhenAnyByteIsDifferent) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  backUp(book);
  const std::string whole = bytes();
  for (std::size_t place = 0; place < whole.size(); place += 997) {
    std::string spoiled = whole;
    spoiled[place] = static_cast<char>(spoiled[place] ^ 4);
    write(spoiled);
    EXPECT_NE(refusal(), "") << "byte " << place;
  }
}

TEST_F(ABookBackup, IsRefusedWhenItIsShorterThanItWasWritten) {
  backUp(open());
  const std::string whole = bytes();
  for (const std::size_t length :
       {std::size_t(0), std::size_t(60), std::size_t(4096), whole.size() - 32, whole.size() - 1}) {
    write(whole.substr(0, length));
    EXPECT_THAT(refusal(), testing::StartsWith('"' + path().string() + "\" is "));
  }
}

TEST_F(ABookBackup, ReplacesAnotherBackupAndNothingElse) {
  backUp(open());
  backUp(open());
  write("");
  backUp(open());
  EXPECT_EQ(refusal(), "");
  write("a letter");
  EXPECT_THROW(backUp(open()), Failure);
  EXPECT_EQ(bytes(), "a letter");
  EXPECT_THROW(open().backUp(file(), settings_, ""), Failure);
}

}  // namespace
}  // namespace kivo::book
