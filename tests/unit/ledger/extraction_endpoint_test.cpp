#include "ledger/extraction_endpoint.h"

#include <fstream>

#include <gmock/gmock.h>

#include "platform/foundation/json_encoder.h"
#include "testkit/damaged_tables.h"
#include "unit/recording/ledger_test.h"

namespace kivo::ledger {

using recording::LedgerTest;

using book::Book;
using book::LedgerEntry;
using recognition::Outcome;

namespace {

using ledger::HttpServer;
using testing::HasSubstr;
using testing::StartsWith;

class AnExtractionEndpoint : public LedgerTest {
 protected:
  static std::string body(const std::string& key = "KEY-1",
                          const std::string& date = "2026-11-21") {
    platform::JSONEncoder object;
    object.encodeString("sms_text", "text");
    object.encodeString("user_id", "user");
    object.encodeString("expense_date", date);
    object.encodeString("idempotency_key", key);
    return object.text();
  }

  static HttpServer::Request request(std::string body) {
    return {.method = "POST", .target = "/functions/v1/sms-extraction", .body = std::move(body)};
  }
  HttpServer::Answer answer(const HttpServer::Request& request) {
    return endpoint_.answers({request}).front();
  }
  HttpServer::Answer post(std::string body) { return answer(request(std::move(body))); }

  std::optional<money::CurrencyCode> currency_ = money::CurrencyCode("EGP");
  std::vector<std::int64_t> reviewed_;
  ExtractionEndpoint endpoint_{[this] { return currency_; },
                               [this](const LedgerEntry& entry) { reviewed_.push_back(entry.id); },
                               reader()};
};

TEST_F(AnExtractionEndpoint, AnswersWithAResponseRecord) {
  const auto answer = post(body());
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, R"({"saved":true,"transaction_type":"expense","expense":{"id":"1",)"
                         R"("description":"Sunny Market","amount":150.0,"category":"Groceries",)"
                         R"("expense_date":"2026-11-21"}})");
  EXPECT_EQ(post(body()).body, answer.body);
}

TEST_F(AnExtractionEndpoint, AcceptsAPathWithTwoLeadingSlashes) {
  EXPECT_EQ(
      answer({.method = "POST", .target = "//functions/v1/sms-extraction", .body = body()}).status,
      200);
}

TEST_F(AnExtractionEndpoint, RefusesOtherPathsAndMethods) {
  EXPECT_EQ(answer({.method = "POST", .target = "/", .body = body()}).status, 404);
  const auto refusal =
      answer({.method = "GET", .target = "/functions/v1/sms-extraction", .body = ""});
  EXPECT_EQ(refusal.status, 405);
  EXPECT_EQ(refusal.allow, "POST");
  EXPECT_THAT(refusal.body, StartsWith(R"({"error":")"));
}

TEST_F(AnExtractionEndpoint, AnswersRequestsThatWaitTogetherInTheirOrder) {
  ASSERT_EQ(post(body("KEY-0")).status, 200);
  auto answers =
      endpoint_.answers({request(body("KEY-1")), request("no JSON"), request(body("KEY-0")),
                         request(body("KEY-2")), request(body("KEY-1"))});
  ASSERT_EQ(answers.size(), 5U);
  EXPECT_THAT(answers[0].body, HasSubstr(R"("id":"2")"));
  EXPECT_EQ(answers[1].status, 400);
  EXPECT_THAT(answers[2].body, HasSubstr(R"("id":"1")"));
  EXPECT_THAT(answers[3].body, HasSubstr(R"("id":"3")"));
  EXPECT_EQ(answers[4].body, answers[0].body);
  EXPECT_EQ(book::Book::open().entries({}).size(), 3U);
}

TEST_F(AnExtractionEndpoint, StoresAllThatWaitTogetherOrNone) {
  ASSERT_EQ(post(body("KEY-0")).status, 200);
  testkit::RawStore(file()).run(
      "CREATE TRIGGER full BEFORE INSERT ON answers WHEN new.key = 'KEY-2' BEGIN "
      "SELECT raise(ABORT, 'full'); END");
  testing::internal::CaptureStderr();
  const auto answers = endpoint_.answers({request(body("KEY-1")), request(body("KEY-2"))});
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(answers[0].status, 503);
  EXPECT_EQ(answers[1].status, 503);
  EXPECT_EQ(book::Book::open().entries({}).size(), 1U);
  EXPECT_TRUE(reviewed_.empty());
}

TEST_F(AnExtractionEndpoint, RefusesABodyThatIsNoValidRequest) {
  for (const std::string& bad :
       {std::string("no JSON"), std::string("[]"), std::string("{}"),
        std::string(R"({"sms_text":"a","user_id":"b","expense_date":"2026-11-21"})"),
        body().substr(0, body().size() - 1) + R"(,"fifth":"x"})",
        std::string(R"({"sms_text":1,"user_id":"b","expense_date":"2026-11-21",)"
                    R"("idempotency_key":"d"})"),
        std::string("{\"sms_text\":\"\xff\",\"user_id\":\"b\",\"expense_date\":\"2026-11-21\","
                    "\"idempotency_key\":\"d\"}")}) {
    const auto answer = post(bad);
    EXPECT_EQ(answer.status, 400) << bad;
    EXPECT_THAT(answer.body, StartsWith(R"({"error":")")) << bad;
  }
}

TEST_F(AnExtractionEndpoint, RefusesADateThatDoesNotExist) {
  for (const char* const date : {"", "2026-02-29", "2026-13-01", "2026-11-00", "26-11-21",
                                 "2026/11/21", "2026-11-2x", "2026-11-21 "}) {
    EXPECT_EQ(post(body("KEY-1", date)).status, 400) << date;
  }
  EXPECT_EQ(post(body("KEY-1", "2028-02-29")).status, 200);
}

TEST_F(AnExtractionEndpoint, FailsUntilTheBookCanBeOpened) {
  std::filesystem::create_directories(file().parent_path());
  std::ofstream(file()) << "no database, but a text of some length";
  testing::internal::CaptureStderr();
  EXPECT_EQ(post(body()).status, 503);
  EXPECT_EQ(post(body()).status, 503);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_THAT(said, HasSubstr("is not a database"));
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
  std::filesystem::remove(file());
  EXPECT_EQ(post(body()).status, 200);
}

TEST_F(AnExtractionEndpoint, AcknowledgesNothingInADamagedBook) {
  ASSERT_EQ(post(body("KEY-1")).status, 200);
  testkit::damageTables(file());
  testing::internal::CaptureStderr();
  EXPECT_EQ(post(body("KEY-1")).status, 503);
  EXPECT_EQ(post(body("KEY-2")).status, 503);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(file().string() + " is damaged: "));
}

TEST_F(AnExtractionEndpoint, FailsUntilTheBookCanBeWritten) {
  ASSERT_EQ(post(body("KEY-1")).status, 200);
  testkit::RawStore(file()).run(
      "CREATE TRIGGER full BEFORE INSERT ON answers BEGIN SELECT raise(ABORT, 'full'); END");
  testing::internal::CaptureStderr();
  EXPECT_EQ(post(body("KEY-2")).status, 503);
  EXPECT_EQ(post(body("KEY-1")).status, 200);  // is known
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("kivo-ledger: the book cannot be read or written: "));
  testkit::RawStore(file()).run("DROP TRIGGER full");
  EXPECT_EQ(post(body("KEY-2")).status, 200);
}

TEST_F(AnExtractionEndpoint, ReportsAnEntryInReviewOnce) {
  post(body("KEY-1"));
  reading_.outcome = Outcome::needsReview;
  post(body("KEY-2"));
  post(body("KEY-2"));
  EXPECT_THAT(reviewed_, testing::ElementsAre(2));
}

TEST_F(AnExtractionEndpoint, StoresNothingWithoutACurrency) {
  currency_.reset();
  EXPECT_EQ(post(body()).status, 503);
  currency_ = money::CurrencyCode("EGP");
  EXPECT_EQ(post(body()).status, 200);
}

}  // namespace
}  // namespace kivo::ledger
