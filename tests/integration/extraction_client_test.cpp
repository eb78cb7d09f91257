// The extraction client over the real HTTP session, with a scripted backend.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "extraction/sms_extraction_client.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/url_session.h"
#include "platform/linux/http/http_url_session.h"
#include "testkit/loopback_socket.h"
#include "testkit/scripted_server.h"
#include "testkit/task_runner.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using platform::DecodingError;
using platform::NSError;
using platform::URLError;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using testkit::await;
using testkit::httpAnswer;
using testkit::ScriptedServer;

/// The session is the process's one, so it has to outlive every test; but not the workers' end.
void installSession() {
  testkit::executor();
  static linux_platform::HTTPURLSession session;
  platform::ProcessWide<platform::URLSession>::install(session);
}

std::string bodyOf(const std::string& request) {
  return request.substr(request.find("\r\n\r\n") + 4);
}

/// The names of the headers of `request`, sorted.
std::vector<std::string> headerNames(const std::string& request) {
  std::vector<std::string> names;
  const std::string head = request.substr(0, request.find("\r\n\r\n"));
  for (auto at = head.find("\r\n"); at != std::string::npos; at = head.find("\r\n", at + 2)) {
    names.push_back(head.substr(at + 2, head.find(':', at) - at - 2));
  }
  std::sort(names.begin(), names.end());
  return names;
}

class AnExtractionOverTheNetwork : public testing::Test {
 protected:
  AnExtractionOverTheNetwork() { installSession(); }

  static SMSExtractionResponse extract(const std::string& base, const std::string& text = "text") {
    return await(SMSExtractionClient::extract(text, "user-1", base, "2024-05-06",
                                              "0E1F2A3B-0000-4000-8000-00000000ABCD"));
  }

  /// The error of kind `Error` that a backend which answers with `bytes` leads to.
  template <typename Error>
  static std::optional<Error> failureAt(const std::string& bytes) {
    const ScriptedServer server(testkit::answering(bytes));
    return failure<Error>(server.url());
  }

  template <typename Error>
  static std::optional<Error> failure(const std::string& base) {
    try {
      extract(base);
    } catch (const Error& error) {
      return error;
    }
    return std::nullopt;
  }
};

const std::string nothingSaved = httpAnswer(200, R"({"saved":false})");

TEST_F(AnExtractionOverTheNetwork, PostsToTheEndpointBelowTheBase) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  extract(server.url());
  extract(server.url() + "/below");
  EXPECT_THAT(server.requests(),
              ElementsAre(StartsWith("POST /functions/v1/sms-extraction HTTP/1.1\r\n"),
                          StartsWith("POST /below/functions/v1/sms-extraction HTTP/1.1\r\n")));
}

TEST_F(AnExtractionOverTheNetwork, KeepsTheDoubleSlashAfterABaseThatEndsInOne) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  EXPECT_FALSE(extract(server.url() + "/").saved);
  EXPECT_THAT(server.requests().at(0),
              StartsWith("POST //functions/v1/sms-extraction HTTP/1.1\r\n"));
}

TEST_F(AnExtractionOverTheNetwork, SetsTheContentTypeAndNoCredentials) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  extract(server.url());
  const std::string request = server.requests().at(0);
  EXPECT_THAT(request, HasSubstr("\r\nContent-Type: application/json\r\n"));
  EXPECT_THAT(headerNames(request),
              ElementsAre("Accept", "Connection", "Content-Length", "Content-Type", "Host"));
}

TEST_F(AnExtractionOverTheNetwork, SendsExactlyFourStrings) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  extract(server.url(), "paid 5");
  EXPECT_EQ(nlohmann::json::parse(bodyOf(server.requests().at(0))),
            nlohmann::json({{"sms_text", "paid 5"},
                            {"user_id", "user-1"},
                            {"expense_date", "2024-05-06"},
                            {"idempotency_key", "0E1F2A3B-0000-4000-8000-00000000ABCD"}}));
}

TEST_F(AnExtractionOverTheNetwork, SendsCompactJSON) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  extract(server.url());
  const std::string body = bodyOf(server.requests().at(0));
  EXPECT_EQ(nlohmann::ordered_json::parse(body).dump(), body);
}

TEST_F(AnExtractionOverTheNetwork, SendsEveryTextUnchanged) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  const std::vector<std::string> texts = {
      "",
      "  \t blanks around \n",
      "\"quoted\" and \\ and /",
      "lines\nand\r\nmore\rlines",
      "تم خصم ١٢٫٥٠ جنيه 💸 é e\u0301 \u2028 \u00a0 \ufeff",
      std::string("a NUL \0 and \x01 \x1f \x7f", 16),
      std::string(200000, 'x'),
  };
  for (const std::string& text : texts) extract(server.url(), text);
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), texts.size());
  for (std::size_t each = 0; each < texts.size(); ++each) {
    const auto body = nlohmann::json::parse(bodyOf(requests[each]));
    EXPECT_EQ(body.at("sms_text").get<std::string>(), texts[each]);
  }
}

TEST_F(AnExtractionOverTheNetwork, SendsTheSameKeyAndDateOnARetry) {
  const ScriptedServer server(testkit::answering(httpAnswer(503, "{}")));
  EXPECT_TRUE(failure<NSError>(server.url()));
  EXPECT_TRUE(failure<NSError>(server.url()));
  EXPECT_EQ(bodyOf(server.requests().at(0)), bodyOf(server.requests().at(1)));
}

TEST_F(AnExtractionOverTheNetwork, ReturnsTheWholeAnswer) {
  const ScriptedServer server(testkit::answering(httpAnswer(
      200,
      R"({"saved":true,"transaction_type":"income","more":[1],"expense":{"id":"7",)"
      R"("description":"Café","amount":12.5,"category":"Food","expense_date":"2024-05-06"}})")));
  EXPECT_EQ(extract(server.url()),
            (SMSExtractionResponse{
                .saved = true,
                .transaction_type = "income",
                .expense = SMSExtractionResponse::SavedExpense{.id = "7",
                                                               .description = "Café",
                                                               .amount = 12.5,
                                                               .category = "Food",
                                                               .expense_date = "2024-05-06"}}));
}

TEST_F(AnExtractionOverTheNetwork, ReturnsThatNothingWasSaved) {
  const ScriptedServer server(testkit::answering(nothingSaved));
  EXPECT_EQ(extract(server.url()), SMSExtractionResponse{.saved = false});
}

TEST_F(AnExtractionOverTheNetwork, FailsForEveryStatusExcept200) {
  for (const int status : {201, 202, 204, 299, 301, 308, 400, 401, 404, 429, 500, 503}) {
    const auto error = failureAt<NSError>(httpAnswer(status, R"({"saved":true})"));
    ASSERT_TRUE(error) << status;
    EXPECT_EQ(error->domain(), "SMSExtraction");
    EXPECT_EQ(error->code(), 500);
    EXPECT_EQ(error->localizedDescription(), "Failed to extract SMS");
    EXPECT_STREQ(error->what(), "Error Domain=SMSExtraction Code=500 \"Failed to extract SMS\"");
  }
}

TEST_F(AnExtractionOverTheNetwork, FailsLikeAWrongStatusWhenTheAnswerIsNotHTTP) {
  const std::string body = R"({"saved":false})";
  for (const std::string& answer :
       {std::string("SSH-2.0-server\r\n\r\n"), "HTTP/2 200\r\n\r\n" + body,
        "HTTP/1.1 2OO OK\r\n\r\n" + body, "HTTP/1.1 200 OK\n\n" + body,
        "HTTP/1.1 200 OK\r\nNo colon\r\n\r\n" + body,
        "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n" + body}) {
    const auto error = failureAt<NSError>(answer);
    ASSERT_TRUE(error) << answer;
    EXPECT_STREQ(error->what(), "Error Domain=SMSExtraction Code=500 \"Failed to extract SMS\"");
  }
}

TEST_F(AnExtractionOverTheNetwork, ThrowsATransportErrorWhenAnHTTPAnswerIsBroken) {
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::map<std::string, URLError::Code> failures = {
      {"HTT", URLError::Code::networkConnectionLost},
      {"HTTP/1.1 200 OK\r\nContent-Le", URLError::Code::networkConnectionLost},
      {chunked + "x\r\n", URLError::Code::badServerResponse},
      {"HTTP/1.1 200 OK\r\nX: " + std::string(70000, 'x'),
       URLError::Code::dataLengthExceedsMaximum},
  };
  for (const auto& [answer, code] : failures) {
    const auto error = failureAt<URLError>(answer);
    ASSERT_TRUE(error) << answer;
    EXPECT_EQ(error->code(), code) << answer;
  }
}

TEST_F(AnExtractionOverTheNetwork, FailsToDecodeAnErrorObject) {
  const auto error = failureAt<DecodingError>(httpAnswer(200, R"({"error":"no such user"})"));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind(), DecodingError::Kind::keyNotFound);
  EXPECT_EQ(error->path(), "saved");
}

TEST_F(AnExtractionOverTheNetwork, FailsToDecodeInvalidJSON) {
  for (const char* const body :
       {"", " ", "<html></html>", "{\"saved\":fal", "{\"saved\":false}x"}) {
    const auto error = failureAt<DecodingError>(httpAnswer(200, body));
    ASSERT_TRUE(error) << body;
    EXPECT_EQ(error->kind(), DecodingError::Kind::dataCorrupted) << body;
  }
}

TEST_F(AnExtractionOverTheNetwork, FailsToDecodeWrongTypes) {
  const std::string expense =
      R"({"saved":true,"expense":{"id":"7","description":"d","amount":"5","category":"c",)"
      R"("expense_date":"e"}})";
  for (const std::string& body :
       {std::string("[]"), std::string("true"), std::string(R"({"saved":1})"),
        std::string(R"({"saved":"true"})"), std::string(R"({"saved":true,"reason":5})"), expense}) {
    const auto error = failureAt<DecodingError>(httpAnswer(200, body));
    ASSERT_TRUE(error) << body;
    EXPECT_EQ(error->kind(), DecodingError::Kind::typeMismatch) << body;
  }
}

TEST_F(AnExtractionOverTheNetwork, SurvivesADeeplyNestedAnswer) {
  const std::string opened(500 * 1000, '[');
  const std::string closed(500 * 1000, ']');
  EXPECT_TRUE(failureAt<DecodingError>(httpAnswer(200, opened)));
  EXPECT_TRUE(failureAt<DecodingError>(httpAnswer(200, opened + closed)));
  const ScriptedServer server(
      testkit::answering(httpAnswer(200, R"({"more":)" + opened + closed + R"(,"saved":false})")));
  EXPECT_FALSE(extract(server.url()).saved);
}

TEST_F(AnExtractionOverTheNetwork, ThrowsTheErrorOfTheTransport) {
  const testkit::RefusedPort refused;
  const std::string refusing = "http://127.0.0.1:" + std::to_string(refused.port());
  const ScriptedServer noTls([](testkit::ServerConnection& peer) { peer.write(nothingSaved); });
  const std::string noTlsThere = "https://127.0.0.1:" + std::to_string(noTls.port());
  const std::map<std::string, URLError::Code> failures = {
      {refusing, URLError::Code::cannotConnectToHost},
      {noTlsThere, URLError::Code::secureConnectionFailed},
      {"example.com", URLError::Code::unsupportedURL},
      {"http://", URLError::Code::unsupportedURL},
      {"kivo://127.0.0.1", URLError::Code::unsupportedURL},
      {"http://127.0.0.1:99999", URLError::Code::unsupportedURL},
  };
  for (const auto& [base, code] : failures) {
    const auto error = failure<URLError>(base);
    ASSERT_TRUE(error) << base;
    EXPECT_EQ(error->code(), code) << base;
  }
  EXPECT_EQ(failureAt<URLError>("")->code(), URLError::Code::networkConnectionLost);
}

platform::Task<void> keepFailure(std::string base, std::optional<URLError>* failure) {
  try {
    co_await SMSExtractionClient::extract("text", "user", base, "2024-05-06", "key");
  } catch (const URLError& error) {
    *failure = error;
  }
}

void idleAfterTheRequest(testkit::ServerConnection& connection) {
  connection.readRequest();
  connection.idle();
}

TEST_F(AnExtractionOverTheNetwork, FailsWhenItsTaskIsCancelled) {
  const ScriptedServer server(idleAfterTheRequest);
  std::optional<URLError> error;
  auto running = testkit::executor().start(keepFailure(server.url(), &error));
  EXPECT_TRUE(server.waitForRequests(1));
  running.cancel();
  running.wait();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), URLError::Code::cancelled);
}

TEST_F(AnExtractionOverTheNetwork, TimesOutAfterFifteenSeconds) {
  const ScriptedServer server(idleAfterTheRequest);
  const auto begin = std::chrono::steady_clock::now();
  const auto error = failure<URLError>(server.url());
  const auto took = std::chrono::steady_clock::now() - begin;
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), URLError::Code::timedOut);
  EXPECT_GE(took, 15s);
  EXPECT_LT(took, 20s);
}

TEST_F(AnExtractionOverTheNetwork, AbortsWhenTheBaseURLCannotBeParsed) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  for (const char* const base :
       {"http://my secret host", "http://secret:abc", "http://sécret.test", "http://secret/%zz"}) {
    EXPECT_EXIT(extract(base), testing::KilledBySignal(SIGABRT),
                AllOf(MatchesRegex("fatal: [^\n]+\n"), Not(HasSubstr("cret"))))
        << base;
  }
}

}  // namespace
}  // namespace kivo
