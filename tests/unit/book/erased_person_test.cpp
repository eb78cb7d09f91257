#include <fstream>

#include <gmock/gmock.h>

#include "book/book.h"
#include "book/current_day.h"
#include "testkit/private_folders.h"

namespace kivo::book {
namespace {

LedgerEntry entryOf(const std::string& user, const std::string& key, const std::string& payee) {
  LedgerEntry entry;
  entry.userId = user;
  entry.key = key;
  entry.date = *money::Day::fromText("2026-11-21");
  entry.amount = money::Money{15'000, money::CurrencyCode("EGP")};
  entry.description = entry.payee = payee;
  entry.category = "Shopping";
  entry.text = "The message about " + payee;
  return entry;
}

class AnErasedPerson : public testing::Test {
 protected:
  std::int64_t add(const LedgerEntry& entry) {
    std::int64_t id = 0;
    book_.inOneStep([&] {
      id = book_.add(book_.fitted(entry));
      book_.keepAnswer(entry.userId, entry.key, "answer about " + entry.payee);
    });
    return id;
  }
  void keepIgnored(const std::string& user, const std::string& key) {
    book_.keepIgnored({.key = key,
                       .userId = user,
                       .date = currentDay(),
                       .reason = IgnoredMessage::Reason::declined,
                       .text = "Declined at " + user + "'s shop"});
  }
  // Whether the files of the book hold `text`.
  [[nodiscard]] bool fileHolds(const std::string& text) const {
    bool found = false;
    for (const auto& entry :
         std::filesystem::directory_iterator(folders_.dataHome() / "app.kivo.ledger")) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>()};
      found = found || bytes.find(text) != std::string::npos;
    }
    return found;
  }

  testkit::PrivateFolders folders_;
  Book book_ = Book::open();
};

TEST_F(AnErasedPerson, LeavesNothingInTheFileAndOthersAll) {
  add(entryOf("Mona", "A", "Tulip Clinic"));
  add(entryOf("Ali", "B", "Corner Grocer"));
  keepIgnored("Mona", "C");
  keepIgnored("Ali", "D");
  ASSERT_TRUE(fileHolds("Tulip Clinic"));
  EXPECT_EQ(book_.erasePerson("Mona"), 1);
  EXPECT_FALSE(fileHolds("Tulip Clinic"));
  EXPECT_FALSE(fileHolds("Mona"));
  EXPECT_FALSE(book_.answer("Mona", "A"));
  EXPECT_TRUE(book_.answer("Ali", "B"));
  ASSERT_EQ(book_.entries({}).size(), 1U);
  EXPECT_EQ(book_.entries({}).front().text, "The message about Corner Grocer");
  EXPECT_EQ(book_.ignoredCount(), 1);
}

TEST_F(AnErasedPerson, IsInNoBackup) {
  add(entryOf("Mona", "A", "Tulip Clinic"));
  book_.erasePerson("Mona");
  const auto path = folders_.home() / "backup";
  book_.backUp(path, {}, "1");
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ASSERT_FALSE(bytes.empty());
  EXPECT_EQ(bytes.find("Tulip"), std::string::npos);
  EXPECT_EQ(bytes.find("Mona"), std::string::npos);
}

TEST_F(AnErasedPerson, DoesNotComeBackByUndo) {
  const std::int64_t monas = add(entryOf("Mona", "A", "Tulip Clinic"));
  const std::int64_t alis = add(entryOf("Ali", "B", "Corner Grocer"));
  UserCommand first{.words = "edit 1 --description \"Tulip Surgery\""};
  book_.asCommand(first, [&] { book_.edit(monas, {.description = "Tulip Surgery"}); });
  UserCommand second{.words = "edit 2 --category Dining"};
  book_.asCommand(second, [&] { book_.edit(alis, {.category = "Dining"}); });
  book_.erasePerson("Mona");
  EXPECT_FALSE(fileHolds("Tulip"));
  EXPECT_EQ(book_.undo(5).size(), 1U);
  ASSERT_EQ(book_.entries({}).size(), 1U);
  EXPECT_EQ(book_.entries({}).front().category, "Shopping");
}

TEST_F(AnErasedPerson, FreesTheOtherHalfOfATransfer) {
  LedgerEntry went = entryOf("Mona", "A", "Ali");
  went.account = "1111";
  LedgerEntry came = entryOf("Ali", "B", "Mona");
  came.account = "2222";
  setKind(came, money::Kind::income);
  const std::int64_t one = add(went);
  const std::int64_t other = add(came);
  ASSERT_TRUE(book_.pair(one, other));
  book_.erasePerson("Mona");
  EXPECT_FALSE(book_.entry(other)->counterpart);
}

TEST_F(AnErasedPerson, IsNobodyElseWithASimilarName) {
  add(entryOf("Mona", "A", "Tulip Clinic"));
  EXPECT_EQ(book_.erasePerson("mona"), 0);
  EXPECT_EQ(book_.erasePerson("Mon"), 0);
  EXPECT_EQ(book_.entries({}).size(), 1U);
}

}  // namespace
}  // namespace kivo::book
