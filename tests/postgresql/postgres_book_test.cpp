// What PostgreSQL does beside the calls of the book: many books, several servers, failures.
#include "book_postgresql/postgres_book.h"

#include <thread>

#include <gmock/gmock.h>
#include <libpq-fe.h>

#include "book_postgresql/postgres_tables.h"
#include "ledger/extraction_endpoint.h"
#include "platform/linux/foundation/device_folders.h"
#include "postgresql/fresh_books.h"
#include "testkit/raw_book.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book_postgresql {

using book::Book;
using recording::LedgerTest;

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

class APostgresBook : public LedgerTest {
 protected:
  // Another book of the same database, which is used in the folders that it returns.
  [[nodiscard]] linux_platform::FoldersIn inOtherBook() const {
    return linux_platform::FoldersIn(folders_.home() / "other");
  }
  static PostgresConnection connection() {
    return PostgresConnection(testkit::FreshBooks::cluster().url());
  }
};

TEST_F(APostgresBook, SeesNoRowsOfAnotherBook) {
  Book mine = open();
  recorded(mine, "KEY-1", spent(15000));
  const auto folders = inOtherBook();
  Book other = open();
  EXPECT_TRUE(other.entries({}).empty());
  EXPECT_FALSE(other.entry(1));
  EXPECT_FALSE(other.edit(1, {.description = "Mine"}));
  EXPECT_FALSE(other.remove(1));
  EXPECT_FALSE(other.answer("user", "KEY-1"));
  other.forgetTexts();
  EXPECT_EQ(other.undo(5).size(), 0U);
  EXPECT_EQ(mine.entry(1)->description, "Sunny Market");
  EXPECT_TRUE(mine.entry(1)->text);
}

TEST_F(APostgresBook, GivesItsOwnNumbersAndAnswersItsOwnKeys) {
  Book mine = open();
  EXPECT_EQ(recorded(mine, "KEY-1", spent(15000)).id, 1);
  const auto folders = inOtherBook();
  Book other = open();
  EXPECT_EQ(recorded(other, "KEY-1", spent(700)).id, 1);
  EXPECT_EQ(mine.entry(1)->amount->minorUnits, 15000);
}

TEST_F(APostgresBook, HasItsWritersWaitForEachOther) {
  Book one = open();
  Book other = open();
  std::thread second;
  one.inOneStep([&] {
    second = std::thread([&] {
      other.inOneStep([&] {
        const auto rate = other.rate("USD", "2026-11-21");  // as the first one left it
        EXPECT_TRUE(rate);
        other.setRate("GBP", money::Rate::fromText("60").value());
      });
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    one.setRate("USD", money::Rate::fromText("48.5").value());
  });
  second.join();
  EXPECT_EQ(one.rates().size(), 2U);
}

TEST_F(APostgresBook, BeginsAgainWhereWaitingForAnotherWriterEndsATransaction) {
  connection().run("ALTER DATABASE postgres SET default_transaction_isolation = 'serializable'");
  std::vector<std::thread> writers;
  for (int writer = 0; writer < 4; ++writer) {
    writers.emplace_back([this, writer, book = std::make_shared<Book>(open())] {
      for (int number = 0; number < 25; ++number) {
        const std::string key = std::to_string(writer) + "-" + std::to_string(number);
        EXPECT_NO_THROW(book->inOneStep([&] { book->keepAnswer("user", key, "answer"); }));
      }
    });
  }
  for (std::thread& writer : writers) writer.join();
  connection().run("ALTER DATABASE postgres RESET default_transaction_isolation");
  EXPECT_EQ(raw("SELECT count(*) FROM answers"), "100\n");
}

// The insertion of an answer fails as a crossed transaction does, `times` times.
class CrossedAnswers {
 public:
  explicit CrossedAnswers(PostgresConnection& connection, int times) : connection_(connection) {
    connection_.run("CREATE SEQUENCE kivo.tries");
    connection_.run(
        "CREATE FUNCTION kivo.crossed() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
        "IF nextval('kivo.tries') <= " +
        std::to_string(times) +
        " THEN RAISE EXCEPTION USING ERRCODE = '40001'; END IF; RETURN NEW; END $$");
    connection_.run(
        "CREATE TRIGGER crossed BEFORE INSERT ON kivo.answers FOR EACH ROW EXECUTE FUNCTION "
        "kivo.crossed()");
  }
  ~CrossedAnswers() {
    connection_.run("DROP FUNCTION kivo.crossed CASCADE; DROP SEQUENCE kivo.tries");
  }
  CrossedAnswers(const CrossedAnswers&) = delete;
  CrossedAnswers& operator=(const CrossedAnswers&) = delete;

 private:
  PostgresConnection& connection_;
};

class MessagesThatAreCrossed : public APostgresBook {
 protected:
  // The status of the answers to two messages that came together.
  int status() {
    const auto request = [](const std::string& key) {
      return ledger::HttpServer::Request{
          .method = "POST",
          .target = "/functions/v1/sms-extraction",
          .body = R"({"sms_text":"text","user_id":"user","expense_date":"2026-11-21",)"
                  R"("idempotency_key":")" +
                  key + R"("})"};
    };
    ledger::ExtractionEndpoint endpoint([] { return money::CurrencyCode("EGP"); },
                                        [](const book::LedgerEntry&) {}, reader());
    const auto answers = endpoint.answers({request("KEY-1"), request("KEY-2")});
    EXPECT_EQ(answers[0].status, answers[1].status);
    return answers[0].status;
  }
};

TEST_F(MessagesThatAreCrossed, AreTakenAgainAndBookedOnce) {
  open();
  PostgresConnection used = connection();
  const CrossedAnswers crossed(used, 3);
  EXPECT_EQ(status(), 200);
  EXPECT_EQ(open().entries({}).size(), 2U);
}

TEST_F(MessagesThatAreCrossed, WaitOnThePhoneWhenThatDoesNotEnd) {
  open();
  PostgresConnection used = connection();
  const CrossedAnswers crossed(used, 1000);
  testing::internal::CaptureStderr();
  EXPECT_EQ(status(), 503);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("another change came at the same time"));
  EXPECT_TRUE(open().entries({}).empty());
}

TEST_F(APostgresBook, KeepsWhatWasAcknowledgedWhenTheDatabaseIsKilled) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  testkit::FreshBooks::cluster().killAndRestart();
  Book again = open();
  EXPECT_EQ(again.entries({}).size(), 1U);
  EXPECT_TRUE(again.answer("user", "KEY-1"));
}

TEST_F(APostgresBook, ConnectsAgainAfterTheConnectionWasLost) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  testkit::FreshBooks::cluster().killAndRestart();
  EXPECT_THROW((void)book.entries({}), book::BookFailure);
  EXPECT_EQ(book.entries({}).size(), 1U);
}

TEST_F(APostgresBook, KeepsNothingOfAStepInWhichTheConnectionWasLost) {
  Book book = open();
  EXPECT_THROW(book.inOneStep([&] {
    book.setRate("USD", money::Rate::fromText("48.5").value());
    testkit::FreshBooks::cluster().killAndRestart();
    book.setRate("GBP", money::Rate::fromText("60").value());
  }),
               book::BookFailure);
  EXPECT_TRUE(book.rates().empty());
}

TEST_F(APostgresBook, KeepsATextThatItCannotStoreWithReplacementCharacters) {
  Book book = open();
  reading_ = spent(15000, std::string("Caf\xff"
                                      "e\0Nilo",
                                      10));
  recorded(book, "KEY-1", reading_);
  EXPECT_EQ(book.entry(1)->description, "Caf\uFFFDe\uFFFDNilo");
}

TEST_F(APostgresBook, RefusesTablesOfANewerVersion) {
  open();
  PostgresConnection used = connection();
  createTables(used);  // are there already
  used.run("INSERT INTO kivo.version VALUES (1000)");
  EXPECT_THAT([&] { createTables(used); },
              ThrowsMessage<book::BookFailure>(HasSubstr("newer version of Kivo")));
  used.run("DELETE FROM kivo.version WHERE number = 1000");
}

TEST_F(APostgresBook, SaysThatTheDatabaseCannotBeReachedWithoutItsAddress) {
  PostgresConnection nowhere("postgresql:///kivo?user=kivo&password=secret&host=/nowhere");
  EXPECT_THAT([&] { nowhere.run("SELECT 1"); },
              ThrowsMessage<book::BookFailure>("the database cannot be reached"));
}

TEST_F(APostgresBook, QuotesNoStoredDataInAFailure) {
  PostgresConnection used = connection();
  EXPECT_THAT([&] { used.run("SELECT 'Tulip Clinic'::BIGINT"); },
              ThrowsMessage<book::BookFailure>("the database refuses a statement (22P02)"));
}

TEST_F(APostgresBook, ComesAndGoesAsABackupOfALocalBook) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000, "Bakery"));
  recorded(book, "KEY-2", spent(900, "Kiosk"));
  book.setRate("USD", money::Rate::fromText("48.5").value());
  book.remove(2);
  const auto path = folders_.home() / "backup";
  EXPECT_EQ(book.backUp(path, {.currency = "EGP"}, "1").count, 1);
  const auto folders = inOtherBook();
  Book other = open();
  other.restore(book::Backup::read(path), [] {});
  ASSERT_EQ(other.entries({}).size(), 1U);
  EXPECT_EQ(other.entries({}).front().text, book.entry(1)->text);
  EXPECT_EQ(other.rates().size(), 1U);
  EXPECT_TRUE(other.answer("user", "KEY-2"));
  EXPECT_EQ(recorded(other, "KEY-3", spent(100)).id, 3);  // 2 was given
}

TEST_F(APostgresBook, StandsInAPartitionByItsNumber) {
  open();
  PostgresConnection used = connection();
  const Result found = used.run(
      "SELECT count(*) FROM pg_inherits WHERE inhparent = 'kivo.transactions'::regclass", {});
  EXPECT_EQ(valueOf(found, 0, 0), "16");
}

TEST_F(APostgresBook, IsLookedUpThroughIndexes) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000));
  const std::string plan = testkit::rawBook(R"(EXPLAIN (COSTS OFF)
    SELECT id FROM transactions WHERE state = 'booked' AND date BETWEEN '2026-11-01' AND '2026-11-30')");
  EXPECT_THAT(plan, HasSubstr("Subplans Removed: 15"));
}

}  // namespace
}  // namespace kivo::book_postgresql
