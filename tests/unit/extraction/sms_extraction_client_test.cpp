#include "extraction/sms_extraction_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "testkit/backend_answers.h"
#include "testkit/task_runner.h"
#include "testkit/test_phone.h"
#include "testkit/written_output.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using platform::DecodingError;
using platform::NSError;
using platform::URLError;
using platform::URLRequest;
using ::testing::ElementsAre;
using ::testing::Pair;
using testkit::ScopedVariable;
using testkit::utc;

const std::string key = "0F8FAD5B-D9CB-469F-A165-70867728950E";

class AnExtraction : public ::testing::Test {
 protected:
  static platform::Task<SMSExtractionResponse> task(std::string text, std::string base) {
    return SMSExtractionClient::extract(std::move(text), "user-0815", std::move(base), "2026-01-31",
                                        key);
  }
  static SMSExtractionResponse extract(std::string text = "Paid 150 at Carrefour",
                                       std::string base = "https://backend.example") {
    return testkit::await(task(std::move(text), std::move(base)));
  }
  /// The request of an extraction.
  URLRequest requestFor(std::string text = "text", std::string base = "https://backend.example") {
    phone_.session.willAnswer(testkit::notSavedBody);
    extract(std::move(text), std::move(base));
    return phone_.session.requests().back();
  }

  testkit::TestPhone phone_;
};

TEST_F(AnExtraction, PostsToTheEndpointBelowTheBaseURL) {
  const auto url = requestFor("text", "https://backend.example:8443/base").url;
  EXPECT_EQ(url.scheme, "https");
  EXPECT_EQ(url.host, "backend.example");
  EXPECT_EQ(url.port, "8443");
  EXPECT_EQ(url.target, "/base/functions/v1/sms-extraction");
}

TEST_F(AnExtraction, AddsNoSlashToABaseWithoutOne) {
  EXPECT_EQ(requestFor("text", "http://backend.example").url.target,
            "/functions/v1/sms-extraction");
}

TEST_F(AnExtraction, KeepsTheSlashAtTheEndOfTheBase) {
  EXPECT_EQ(requestFor("text", "http://backend.example/").url.target,
            "//functions/v1/sms-extraction");
}

TEST_F(AnExtraction, NeitherEncodesNorDecodesTheBase) {
  EXPECT_EQ(requestFor("text", "http://backend.example/a%2Fb?c=d").url.target,
            "/a%2Fb?c=d/functions/v1/sms-extraction");
}

TEST_F(AnExtraction, ReachesTheSessionWithoutAValidEndpoint) {
  for (const auto* const base : {"backend.example", "http://", "kivo://host"}) {
    phone_.session.willFail(URLError(URLError::Code::unsupportedURL));
    EXPECT_THROW(extract("text", base), URLError) << base;
  }
  EXPECT_EQ(phone_.session.requests().size(), 3u);
}

TEST_F(AnExtraction, IsAPostWithATimeoutOfFifteenSeconds) {
  const auto request = requestFor();
  EXPECT_EQ(request.httpMethod, "POST");
  EXPECT_EQ(request.timeoutInterval, 15s);
  EXPECT_EQ(request.cachePolicy, URLRequest::CachePolicy::useProtocolCachePolicy);
}

TEST_F(AnExtraction, SetsTheContentTypeAndNoCredential) {
  EXPECT_THAT(requestFor().headerFields, ElementsAre(Pair("Content-Type", "application/json")));
}

TEST_F(AnExtraction, SendsExactlyFourStrings) {
  EXPECT_EQ(requestFor("Paid 150").httpBody,
            R"({"sms_text":"Paid 150","user_id":"user-0815","expense_date":"2026-01-31",)"
            R"("idempotency_key":"0F8FAD5B-D9CB-469F-A165-70867728950E"})");
}

TEST_F(AnExtraction, SendsAnEmptyTextAsAnEmptyString) {
  requestFor("");
  EXPECT_THAT(phone_.session.sent("sms_text"), ElementsAre(""));
}

TEST_F(AnExtraction, SendsTheTextUnchanged) {
  const std::string text =
      " \"quoted\" \\back\\ /slash/ \r\n\ttab \x01 خصم ١٥٠ جنيه 💸 e\u0301 \u2028 \u00a0";
  requestFor(text);
  EXPECT_THAT(phone_.session.sent("sms_text"), ElementsAre(text));
}

TEST_F(AnExtraction, SendsATextThatContainsNUL) {
  const std::string text("before\0after", 12);
  requestFor(text);
  EXPECT_THAT(phone_.session.sent("sms_text"), ElementsAre(text));
}

TEST_F(AnExtraction, ReturnsTheSavedExpense) {
  phone_.session.willAnswer(R"({"saved":true,"transaction_type":"expense","expense":{"id":"e1",)"
                            R"("description":"Carrefour","amount":150,"category":"Groceries",)"
                            R"("expense_date":"2026-01-31"},"unknown":[1,{"deep":null}]})");
  const SMSExtractionResponse expected{.saved = true,
                                       .transaction_type = "expense",
                                       .expense = SMSExtractionResponse::SavedExpense{
                                           "e1", "Carrefour", 150, "Groceries", "2026-01-31"}};
  EXPECT_EQ(extract(), expected);
}

TEST_F(AnExtraction, ReturnsThatNothingWasSaved) {
  phone_.session.willAnswer(testkit::notSavedBody);
  EXPECT_EQ(extract(), SMSExtractionResponse{.saved = false});
}

TEST_F(AnExtraction, FailsForEveryStatusExcept200) {
  for (const int status : {201, 202, 204, 206, 299, 301, 302, 307, 400, 401, 404, 429, 500, 503}) {
    phone_.session.willAnswer(testkit::savedBody(), status);
    try {
      extract();
      ADD_FAILURE() << "no error for status " << status;
    } catch (const NSError& error) {
      EXPECT_EQ(error.domain(), "SMSExtraction");
      EXPECT_EQ(error.code(), 500);
      EXPECT_EQ(error.localizedDescription(), "Failed to extract SMS");
      EXPECT_STREQ(error.what(), R"(Error Domain=SMSExtraction Code=500 "Failed to extract SMS")");
    }
  }
}

TEST_F(AnExtraction, FailsLikeAWrongStatusWhenTheAnswerIsNotHTTP) {
  phone_.session.willDo([](const URLRequest&) {
    return platform::URLAnswer{.data = testkit::savedBody(), .response = std::nullopt};
  });
  try {
    extract();
    ADD_FAILURE() << "no error";
  } catch (const NSError& error) {
    EXPECT_STREQ(error.what(), R"(Error Domain=SMSExtraction Code=500 "Failed to extract SMS")");
  }
}

TEST_F(AnExtraction, ThrowsTheErrorOfTheSessionUnchanged) {
  using Code = URLError::Code;
  for (const Code code :
       {Code::cancelled, Code::timedOut, Code::unsupportedURL, Code::cannotFindHost,
        Code::cannotConnectToHost, Code::secureConnectionFailed, Code::networkConnectionLost,
        Code::badServerResponse, Code::dataLengthExceedsMaximum}) {
    phone_.session.willFail(URLError(code));
    try {
      extract();
      ADD_FAILURE() << "no error";
    } catch (const URLError& error) {
      EXPECT_EQ(error.code(), code);
    }
  }
}

void expectDecodingError(DecodingError::Kind kind, const std::string& path) {
  try {
    testkit::await(
        SMSExtractionClient::extract("text", "user", "https://backend.example", "2026-01-31", key));
    ADD_FAILURE() << "no error";
  } catch (const DecodingError& error) {
    EXPECT_EQ(error.kind(), kind);
    EXPECT_EQ(error.path(), path);
  }
}

TEST_F(AnExtraction, ThrowsADecodingErrorUnchanged) {
  using Kind = DecodingError::Kind;
  phone_.session.willAnswer(R"({"error":"no such function"})");
  expectDecodingError(Kind::keyNotFound, "saved");
  phone_.session.willAnswer(R"({"saved":null})");
  expectDecodingError(Kind::valueNotFound, "saved");
  phone_.session.willAnswer(R"({"saved":1})");
  expectDecodingError(Kind::typeMismatch, "saved");
  phone_.session.willAnswer(
      R"({"saved":true,"expense":{"id":"e","description":"d","amount":"9"}})");
  expectDecodingError(Kind::typeMismatch, "expense.amount");
  phone_.session.willAnswer("<html>");
  expectDecodingError(Kind::dataCorrupted, "");
  phone_.session.willAnswer("");
  expectDecodingError(Kind::dataCorrupted, "");
}

TEST_F(AnExtraction, SendsOneRequestWithoutARetry) {
  phone_.session.willAnswer("", 503);
  EXPECT_THROW(extract(), NSError);
  EXPECT_EQ(phone_.session.requests().size(), 1u);
}

TEST_F(AnExtraction, DoesNotTouchStoreWidgetOrOutput) {
  const auto before = phone_.contents();
  phone_.session.willFail(URLError(URLError::Code::timedOut));
  bool failed = false;
  const auto written = testkit::writtenBy([&] {
    try {
      extract();
    } catch (const URLError&) {
      failed = true;
    }
  });
  EXPECT_TRUE(failed);
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.err, "");
  EXPECT_EQ(phone_.contents(), before);
  EXPECT_THAT(phone_.log.names(), ElementsAre("exchange"));
}

TEST_F(AnExtraction, BlocksNoWorkerWhileItWaits) {
  constexpr std::size_t moreThanWorkers = 6;
  phone_.session.gate().close();
  std::vector<linux_platform::RunningTask> running;
  std::vector<std::optional<SMSExtractionResponse>> results(moreThanWorkers);
  for (auto& result : results) {
    phone_.session.willAnswer(testkit::notSavedBody);
    running.push_back(testkit::executor().start(
        testkit::keepResult(task("text", "https://backend.example"), &result)));
  }
  phone_.session.gate().waitForArrivals(moreThanWorkers);
  EXPECT_EQ(phone_.session.mostAtOnce(), moreThanWorkers);
  phone_.session.gate().open();
  for (auto& each : running) each.wait();
  for (const auto& result : results) EXPECT_TRUE(result.has_value());
}

TEST_F(AnExtraction, ThrowsATransportErrorWhenItsTaskIsCancelled) {
  phone_.session.willAnswer(testkit::savedBody());
  phone_.session.gate().close();
  std::optional<SMSExtractionResponse> result;
  auto running = testkit::executor().start(
      testkit::keepResult(task("text", "https://backend.example"), &result));
  phone_.session.gate().waitForArrivals(1);
  running.cancel();
  try {
    running.wait();
    ADD_FAILURE() << "no error";
  } catch (const URLError& error) {
    EXPECT_EQ(error.code(), URLError::Code::cancelled);
  }
}

using AnExtractionDeathTest = AnExtraction;

TEST_F(AnExtractionDeathTest, AbortsWhenTheBaseURLCannotBeParsed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const ScopedVariable inside("TMPDIR", phone_.folders.home().string());
  EXPECT_DEATH(extract("text", "https://bad host"), "^fatal: the stored base URL");
  EXPECT_DEATH(extract("text", "https://backend.example:80x"), "^fatal: the stored base URL");
}

class TheExpenseDate : public ::testing::Test {
 protected:
  testkit::TestPhone phone_;
};

TEST_F(TheExpenseDate, IsTheLocalDayWhenUTCIsADayBehind) {
  const ScopedVariable zone("TZ", "Etc/GMT-2");
  phone_.clock.set(utc(2026, 1, 31, 22, 30));
  EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2026-02-01");
}

TEST_F(TheExpenseDate, IsTheLocalDayWhenUTCIsADayAhead) {
  const ScopedVariable zone("TZ", "America/New_York");
  phone_.clock.set(utc(2026, 2, 1, 4, 59, 59));
  EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2026-01-31");
}

TEST_F(TheExpenseDate, FollowsATimeZoneChangeInARunningProcess) {
  phone_.clock.set(utc(2026, 1, 31, 22, 30));
  EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2026-01-31");
  const ScopedVariable zone("TZ", "Asia/Tokyo");
  EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2026-02-01");
}

TEST_F(TheExpenseDate, IsGregorianInASCIIDigitsInEveryLocale) {
  for (const auto* const name : {"th_TH.UTF-8", "fa_IR.UTF-8", "ar_EG.UTF-8", "C", ""}) {
    const ScopedVariable locale("LC_ALL", name);
    EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2026-01-31") << name;
  }
}

TEST_F(TheExpenseDate, UsesTheCalendarYearNotTheWeekYear) {
  phone_.clock.set(utc(2025, 12, 29, 12));
  EXPECT_EQ(SMSExtractionClient::currentExpenseDate(), "2025-12-29");
}

}  // namespace
}  // namespace kivo
