#include "server/server_endpoint.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "platform/foundation/json_encoder.h"
#include "testkit/private_folders.h"
#include "unit/server/opened_shelf.h"

namespace kivo::server {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* purchase = "Your card ending 4821 was charged EGP 150.00 at Carrefour City.";

// A server with the book Family of Mona and Ali, in EGP, and the book Club of Zoe, in EUR.
class AServerEndpoint : public testing::Test {
 protected:
  AServerEndpoint() {
    Directory directory(*shelf_);
    directory.addBook("Family", money::CurrencyCode("EGP"));
    directory.addBook("Club", money::CurrencyCode("EUR"));
    for (const char* const person : {"Mona", "Ali"}) directory.addPerson(person, "Family");
    directory.addPerson("Zoe", "Club");
    mona_ = directory.addDevice("Mona", "phone");
    ali_ = directory.addDevice("Ali", "phone");
    zoe_ = directory.addDevice("Zoe", "phone");
  }

  static ServerEndpoint::Request message(const std::string& secret, const std::string& user,
                                         const std::string& key = "KEY-1",
                                         const std::string& text = purchase) {
    platform::JSONEncoder body;
    body.encodeString("sms_text", text);
    body.encodeString("user_id", user);
    body.encodeString("expense_date", "2026-11-21");
    body.encodeString("idempotency_key", key);
    return {.method = "POST",
            .target = "/p/" + secret + "/functions/v1/sms-extraction",
            .body = body.text()};
  }
  static ServerEndpoint::Request get(const std::string& target) {
    return {.method = "GET", .target = target, .body = ""};
  }
  ServerEndpoint::Answer answer(const ServerEndpoint::Request& request) {
    return endpoint_.answers({request}).front();
  }
  // The entries of a book.
  std::vector<book::LedgerEntry> entries(const std::string& name) {
    std::vector<book::LedgerEntry> found;
    shelf_->inBook(Directory(*shelf_).book(name).number, Shelf::Settings::stay,
                   [&] { found = book::Book::open().entries({}); });
    return found;
  }

  testkit::PrivateFolders folders_;
  std::unique_ptr<Shelf> shelf_ = openedShelf();
  std::string mona_;
  std::string ali_;
  std::string zoe_;
  ServerEndpoint endpoint_{*shelf_};
};

TEST_F(AServerEndpoint, BooksTheMessagesOfAHouseholdInOneBook) {
  EXPECT_EQ(answer(message(mona_, "Mona")).status, 200);
  EXPECT_EQ(answer(message(ali_, "Ali", "KEY-2")).status, 200);
  const auto booked = entries("Family");
  ASSERT_EQ(booked.size(), 2U);
  EXPECT_EQ(booked[0].userId, "Ali");
  EXPECT_EQ(booked[1].userId, "Mona");
  EXPECT_TRUE(entries("Club").empty());
}

TEST_F(AServerEndpoint, AnswersAKeyOfAPersonWithTheSameBytesAndBooksItOnce) {
  const auto first = answer(message(mona_, "Mona"));
  EXPECT_EQ(answer(message(mona_, "Mona")).body, first.body);
  EXPECT_EQ(entries("Family").size(), 1U);
  EXPECT_EQ(answer(message(ali_, "Ali")).status, 200);  // is another person's key
  EXPECT_EQ(entries("Family").size(), 2U);
}

TEST_F(AServerEndpoint, AnswersMessagesForTwoBooksTogetherEachFromItsOwn) {
  const auto answers = endpoint_.answers({message(zoe_, "Zoe"), message(mona_, "Mona")});
  EXPECT_THAT(answers[0].body, HasSubstr("needs_review"));  // Egyptian pounds in a book of euros
  EXPECT_THAT(answers[1].body, HasSubstr("\"saved\":true"));
  EXPECT_EQ(entries("Family").size(), 1U);
}

TEST_F(AServerEndpoint, RefusesAMessageOfAnotherPersonAndBooksNothing) {
  EXPECT_EQ(answer(message(mona_, "Ali")).status, 403);
  EXPECT_EQ(answer(message(mona_, "mona")).status, 403);
  EXPECT_EQ(answer(message(zoe_, "Mona")).status, 403);
  EXPECT_TRUE(entries("Family").empty());
  EXPECT_TRUE(entries("Club").empty());
}

TEST_F(AServerEndpoint, AnswersAWrongSecretAsItDoesAnyUnknownPath) {
  const auto unknown = answer(get("/nothing"));
  EXPECT_EQ(unknown.status, 404);
  const std::string wrong(32, '0');
  for (const std::string& target :
       {"/p/" + wrong + "/report", "/p/" + wrong + "/functions/v1/sms-extraction", "/p/" + wrong,
        std::string("/p/"), std::string("/p"), std::string("/"), std::string(""),
        "/p/" + mona_ + "/", "/p/" + mona_, "/p/" + mona_ + "/v1/nothing",
        "/P/" + mona_ + "/report", "/p/" + mona_ + "/../" + ali_ + "/report",
        std::string("/p/%2e%2e/report")}) {
    const auto found = answer(get(target));
    EXPECT_EQ(found.status, 404) << target;
    EXPECT_EQ(found.body, unknown.body) << target;
  }
}

TEST_F(AServerEndpoint, LetsARevokedDeviceReachNothing) {
  EXPECT_EQ(answer(message(mona_, "Mona")).status, 200);
  const auto others = openedShelf();
  Directory(*others).revokeDevice("phone", "Mona");
  EXPECT_EQ(answer(message(mona_, "Mona", "KEY-2")).status, 404);
  EXPECT_EQ(answer(get("/p/" + mona_ + "/report")).status, 404);
  EXPECT_EQ(entries("Family").size(), 1U);
}

TEST_F(AServerEndpoint, ShowsThePageOfAMonthOrAYear) {
  answer(message(mona_, "Mona"));
  const auto month = answer(get("/p/" + ali_ + "/report?month=2026-11"));
  EXPECT_EQ(month.status, 200);
  EXPECT_EQ(month.contentType, "text/html; charset=utf-8");
  EXPECT_THAT(month.body, HasSubstr("Carrefour City"));
  EXPECT_THAT(answer(get("/p/" + ali_ + "/report?year=2026")).body, HasSubstr("Carrefour City"));
  EXPECT_THAT(answer(get("/p/" + ali_ + "/report?month=2026-10")).body,
              HasSubstr("<title>Kivo: October 2026</title>"));
  EXPECT_EQ(answer(get("/p/" + ali_ + "/report?month=13")).status, 400);
  EXPECT_EQ(answer(get("/p/" + ali_ + "/report?user=Zoe")).status, 400);
}

TEST_F(AServerEndpoint, ShowsNobodyAnotherBooksPage) {
  answer(message(mona_, "Mona"));
  const auto other = answer(get("/p/" + zoe_ + "/report?month=2026-11"));
  EXPECT_EQ(other.status, 200);
  EXPECT_THAT(other.body, Not(HasSubstr("Carrefour")));
}

TEST_F(AServerEndpoint, HasNoBrowserKeepThePage) {
  const auto page = answer(get("/p/" + mona_ + "/report"));
  EXPECT_EQ(page.headers.at("Cache-Control"), "no-store");
  EXPECT_EQ(page.headers.at("Referrer-Policy"), "no-referrer");
}

TEST_F(AServerEndpoint, TakesNoMessageByAnotherMethodAndNoPageByAnother) {
  auto request = message(mona_, "Mona");
  request.method = "GET";
  EXPECT_EQ(answer(request).status, 405);
  auto page = get("/p/" + mona_ + "/report");
  page.method = "POST";
  EXPECT_EQ(answer(page).status, 405);
  EXPECT_EQ(answer(page).allow, "GET");
}

TEST_F(AServerEndpoint, TakesABaseAddressThatEndsWithASlash) {
  auto request = message(mona_, "Mona");
  request.target = "/p/" + mona_ + "//functions/v1/sms-extraction";
  EXPECT_EQ(answer(request).status, 200);
}

TEST_F(AServerEndpoint, CountsAnswersWithoutAnythingPersonal) {
  answer(message(mona_, "Mona"));
  answer(get("/p/" + mona_ + "/report"));
  answer(get("/p/wrong/report"));
  EXPECT_EQ(answer(get("/healthz")).body, "ok\n");
  const std::string metrics = answer(get("/metrics")).body;
  EXPECT_THAT(metrics, HasSubstr("kivo_answers_total{route=\"extraction\",status=\"200\"} 1\n"));
  EXPECT_THAT(metrics, HasSubstr("kivo_answers_total{route=\"report\",status=\"200\"} 1\n"));
  EXPECT_THAT(metrics, HasSubstr("kivo_answers_total{route=\"other\",status=\"404\"} 1\n"));
  for (const std::string& secret : {mona_, std::string("Mona"), std::string("Family"),
                                    std::string("Carrefour"), std::string("150")}) {
    EXPECT_THAT(metrics, Not(HasSubstr(secret)));
  }
}

TEST_F(AServerEndpoint, HasOnlyHastyPeopleWait) {
  for (int number = 0; number < 200; ++number) {
    EXPECT_EQ(endpoint_.pauseFor(message(mona_, "Mona")).count(), 0);
  }
  EXPECT_GT(endpoint_.pauseFor(message(mona_, "Mona")).count(), 0);
  EXPECT_EQ(endpoint_.pauseFor(message(ali_, "Ali")).count(), 0);
  EXPECT_EQ(endpoint_.pauseFor(get("/healthz")).count(), 0);
  EXPECT_THAT(answer(get("/metrics")).body, HasSubstr("kivo_pause_seconds_count 1\n"));
}

TEST_F(AServerEndpoint, GoesOnWithOtherBooksWhenOneIsDamaged) {
  answer(message(mona_, "Mona"));
  const auto number = std::to_string(Directory(*shelf_).book("Club").number);
  const auto file = folders_.dataHome() / "app.kivo.server" / "books" / number / "data" /
                    "app.kivo.ledger" / "ledger.sqlite3";
  std::filesystem::resize_file(file, 0);
  for (const char* const suffix : {"-wal", "-shm"}) {
    std::filesystem::remove(file.string() + suffix);
  }
  std::filesystem::resize_file(file, 10);
  testing::internal::CaptureStderr();
  EXPECT_EQ(answer(message(zoe_, "Zoe")).status, 503);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), Not(HasSubstr("Carrefour")));
  EXPECT_EQ(answer(message(mona_, "Mona", "KEY-2")).status, 200);
}

TEST_F(AServerEndpoint, AnswersForMoreBooksThanItKeepsOpen) {
  Directory directory(*shelf_);
  std::vector<std::string> secrets;
  for (int number = 0; number < 70; ++number) {
    const std::string name = "P" + std::to_string(number);
    directory.addBook(name, money::CurrencyCode("EGP"));
    directory.addPerson(name, name);
    secrets.push_back(directory.addDevice(name, "phone"));
  }
  for (int turn = 0; turn < 2; ++turn) {
    for (std::size_t at = 0; at < secrets.size(); ++at) {
      const std::string key = "KEY-" + std::to_string(turn);
      EXPECT_EQ(answer(message(secrets[at], "P" + std::to_string(at), key)).status, 200);
    }
  }
  EXPECT_EQ(entries("P3").size(), 2U);
}

}  // namespace
}  // namespace kivo::server
