// Books whose files were damaged: what is noticed, said and answered.
#include "book/book_damage.h"

#include <fstream>
#include <map>
#include <random>

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "book/book_file.h"
#include "ledger/extraction_endpoint.h"
#include "platform/foundation/json_encoder.h"
#include "testkit/damaged_tables.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recording::LedgerTest;

using ledger::ExtractionEndpoint;
using ledger::HttpServer;
using money::largestSum;
using money::Money;
using recognition::Reading;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ADamagedBook : public LedgerTest {
 protected:
  // A book of many pages whose WAL is empty.
  void fill(int count) {
    Book book = open();
    for (int number = 0; number < count; ++number) {
      reading_ = spent(100 + number, "Payee " + std::to_string(number % 40));
      reading_.reference = number % 3 == 0 ? "UTR " + std::to_string(number) : "";
      record(book, message("KEY-" + std::to_string(number)));
    }
    checkpoint();
  }
  void checkpoint() { testkit::RawStore(file()).run("PRAGMA wal_checkpoint(TRUNCATE)"); }

  // Changes values as a damaged disk does: without the checks.
  void spoil(const std::string& sql) {
    testkit::RawStore(file()).run("PRAGMA ignore_check_constraints = ON; " + sql);
  }
  HttpServer::Answer post(ExtractionEndpoint& endpoint, const std::string& key) {
    platform::JSONEncoder object;
    object.encodeString("sms_text", "text of " + key);
    object.encodeString("user_id", "user");
    object.encodeString("expense_date", "2026-11-21");
    object.encodeString("idempotency_key", key);
    return endpoint.answers(
        {{.method = "POST", .target = "/functions/v1/sms-extraction", .body = object.text()}})[0];
  }
  ExtractionEndpoint endpoint() {
    return {[] { return money::CurrencyCode("EGP"); }, [](const LedgerEntry&) {}, reader()};
  }

  [[nodiscard]] fs::path note() const { return file().string() + "-damaged"; }
};

TEST_F(ADamagedBook, RefusesMessagesAndSaysWhereUntilItIsWhole) {
  fill(200);
  const fs::path copy = folders_.dataHome() / "copy";
  fs::copy_file(file(), copy);
  testkit::damageTables(file());
  ExtractionEndpoint served = endpoint();
  testing::internal::CaptureStderr();
  EXPECT_EQ(post(served, "NEW").status, 503);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_THAT(said, StartsWith("kivo-ledger: " + file().string() + " is damaged: "));
  EXPECT_THAT(said, HasSubstr("restore a backup by kivo-ledger restore FILE"));
  EXPECT_THAT(said,
              HasSubstr(" is damaged: Page "));  // without SQLite's "*** in database main ***"
  ASSERT_TRUE(fs::exists(note()));
  struct stat found {};
  stat(note().c_str(), &found);
  EXPECT_EQ(found.st_mode & 0777U, 0600U);
  fs::remove(file());
  fs::rename(copy, file());
  EXPECT_EQ(post(served, "NEW").status, 200);
  EXPECT_FALSE(fs::exists(note()));
}

TEST_F(ADamagedBook, IsNoticedByARunningServiceOnceACommandHasLeftANote) {
  fill(200);
  ExtractionEndpoint served = endpoint();
  ASSERT_EQ(post(served, "NEW-1").status, 200);
  testkit::damageTables(file());
  testing::internal::CaptureStderr();
  {
    Book book = open();
    try {
      EXPECT_TRUE(book.entries({}).empty());
      ADD_FAILURE() << "the damage was not found";
    } catch (const BookFailure& failure) {
      book.tell(failure);
    }
  }
  EXPECT_TRUE(fs::exists(note()));
  EXPECT_EQ(post(served, "NEW-2").status, 503);
  EXPECT_EQ(post(served, "NEW-1").status, 503);
  testing::internal::GetCapturedStderr();
}

TEST_F(ADamagedBook, IsNotSuspectedWhenTheCheckItselfFails) {
  fill(3);
  const linux_platform::Database database = openBookFile();
  const auto interrupt = [](void*) { return 1; };
  sqlite3_progress_handler(database.get(), 1, interrupt, nullptr);
  EXPECT_THROW(checkWhole(database.get()), BookFailure);
  EXPECT_FALSE(fs::exists(note()));
}

TEST_F(ADamagedBook, ListsAndAddsUpTheOtherRowsWhenValuesOfSomeCannotBe) {
  fill(6);
  spoil(
      "UPDATE transactions SET date = '2026-11' WHERE id = 1;"
      "UPDATE transactions SET minor_units = -9223372036854775807 - 1 WHERE id = 2;"
      "UPDATE transactions SET kind = 'gift' WHERE id = 3;"
      "UPDATE transactions SET date = '2026-11-7x' WHERE id = 4");
  Book book = open();
  testing::internal::CaptureStderr();
  EXPECT_EQ(book.entries({}).size(), 2U);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr(" is damaged: the values of these transactions cannot be: 4, 3, 2, 1; "));
  std::int64_t sum = 0;
  for (const auto& group : book.sumsByDay(money::Period::of(money::Month("2026-11")), largestSum)) {
    sum += group.sum.minorUnits;
  }
  EXPECT_EQ(sum, 104 + 105);
  EXPECT_EQ(book.entry(1)->state, LedgerEntry::State::setAside);
  EXPECT_TRUE(fs::exists(note()));
}

TEST_F(ADamagedBook, SetsAsideWhatCannotBeWhenTheServiceStarts) {
  fill(3);
  spoil("UPDATE transactions SET date = '2026-11' WHERE id = 1");
  ExtractionEndpoint served = endpoint();
  EXPECT_EQ(post(served, "NEW").status, 200);
  EXPECT_FALSE(fs::exists(note()));
  Book book = open();
  EXPECT_EQ(book.entries({}).size(), 3U);
  const auto aside = book.entries({.state = LedgerEntry::State::setAside});
  ASSERT_EQ(aside.size(), 1U);
  EXPECT_EQ(aside[0].id, 1);
}

// A 200 means: any later run finds the message, and answers its key with the same bytes.
TEST_F(ADamagedBook, NeverAcknowledgesWhatItLoses) {
  fill(400);
  const fs::path copy = folders_.dataHome() / "copy";
  fs::copy_file(file(), copy);
  const auto size = fs::file_size(copy);
  std::map<int, int> answers;
  int unnoticed = 0;
  constexpr int books = 120;
  for (unsigned seed = 1; seed <= books; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    fs::remove_all(file().parent_path());
    fs::create_directory(file().parent_path());
    fs::copy_file(copy, file());
    {
      std::mt19937_64 random(seed);
      std::fstream stream(file(), std::ios::in | std::ios::out | std::ios::binary);
      for (unsigned flips = 1 + seed % 8; flips > 0; --flips) {
        const auto place = static_cast<std::streamoff>(random() % size);
        char byte = 0;
        stream.seekg(place).get(byte);
        stream.seekp(place).put(static_cast<char>(byte ^ (1 << random() % 8)));
      }
    }
    testing::internal::CaptureStderr();
    reading_ = spent(77700, "New Payee");
    std::string answer;
    int status = 0;
    {
      ExtractionEndpoint served = endpoint();
      const auto first = post(served, "NEW");
      status = first.status;
      answer = first.body;
    }
    ++answers[status];
    if (status != 200) {
      EXPECT_EQ(status, 503);
    } else {
      ExtractionEndpoint served = endpoint();
      reading_ = spent(1, "Another");
      EXPECT_EQ(post(served, "NEW").body, answer);
      int listed = 0;
      for (const LedgerEntry& entry : open().entries({.from = money::Day("2026-11-21")})) {
        if (entry.key == "NEW" && entry.amount == Money{77700, "EGP"}) ++listed;
      }
      EXPECT_EQ(listed, 1);
      try {
        if (testkit::RawStore(file()).run("PRAGMA integrity_check(1)") != "ok\n") ++unnoticed;
      } catch (const std::runtime_error&) {
        ++unnoticed;
      }
    }
    testing::internal::GetCapturedStderr();
  }
  std::cout << answers[200] << " books took the message, " << answers[503] << " refused it; "
            << unnoticed << " took it in spite of damage that a thorough check finds\n";
  EXPECT_GT(answers[200], 0);
  EXPECT_GT(answers[503], 0);
}

}  // namespace
}  // namespace kivo::book
