#include "demo/embedded_backend.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "extraction/sms_extraction_response.h"

namespace kivo {
namespace {

constexpr std::string_view purchase = "Purchase of EGP 80.50 at Sunny Basket Market";

class AnEmbeddedBackend : public ::testing::Test {
 protected:
  static std::string body(std::string_view message, std::string_view key = "KEY-1") {
    platform::JSONEncoder object;
    object.encodeString("sms_text", message);
    object.encodeString("user_id", "user-1");
    object.encodeString("expense_date", "2026-05-12");
    object.encodeString("idempotency_key", key);
    return object.text();
  }

  EmbeddedBackend::Answer post(std::string_view body,
                               std::string_view target = "/functions/v1/sms-extraction") {
    return backend_.answer({.method = "POST", .target = target, .body = body});
  }

  SMSExtractionResponse extract(std::string_view message, std::string_view key = "KEY-1") {
    const auto answer = post(body(message, key));
    EXPECT_EQ(answer.status, 200);
    return SMSExtractionResponse::decode(answer.body);
  }

  EmbeddedBackend backend_{"EGP"};
};

TEST_F(AnEmbeddedBackend, StoresAnExpense) {
  const auto response = extract(purchase);
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.transaction_type, "expense");
  ASSERT_TRUE(response.expense);
  EXPECT_FALSE(response.expense->id.empty());
  EXPECT_EQ(response.expense->description, "Sunny Basket Market");
  EXPECT_EQ(response.expense->amount, 80.5);
  EXPECT_EQ(response.expense->category, "Groceries");
  EXPECT_EQ(response.expense->expense_date, "2026-05-12");
  EXPECT_EQ(backend_.storedTransactions(), 1U);
}

TEST_F(AnEmbeddedBackend, StoresAnIncome) {
  const auto response = extract("Your salary of EGP 9,000.00 has been credited");
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.transaction_type, "income");
  EXPECT_EQ(backend_.storedTransactions(), 1U);
}

TEST_F(AnEmbeddedBackend, StoresNothingDeclined) {
  const auto response = extract("Purchase of EGP 80.50 at Tulip Store was declined");
  EXPECT_EQ(response, (SMSExtractionResponse{.saved = false, .reason = "declined"}));
  EXPECT_EQ(backend_.storedTransactions(), 0U);
}

TEST_F(AnEmbeddedBackend, StoresNothingOfATextThatIsNoTransaction) {
  const auto response = extract("Your balance is EGP 80.50");
  EXPECT_FALSE(response.saved);
  EXPECT_NE(response.reason, "declined");
  EXPECT_FALSE(response.expense);
  EXPECT_EQ(backend_.storedTransactions(), 0U);
}

TEST_F(AnEmbeddedBackend, AnswersARepeatedKeyWithTheSameBytesAndStoresOnce) {
  const auto first = post(body(purchase));
  post(body(purchase, "KEY-2"));
  EXPECT_EQ(post(body(purchase)), first);
  EXPECT_EQ(backend_.storedTransactions(), 2U);
}

TEST_F(AnEmbeddedBackend, TakesANewKeyForANewTransaction) {
  EXPECT_NE(extract(purchase, "KEY-1").expense->id, extract(purchase, "KEY-2").expense->id);
}

TEST_F(AnEmbeddedBackend, IsBelowABaseThatEndsWithASlashToo) {
  EXPECT_EQ(post(body(purchase), "//functions/v1/sms-extraction").status, 200);
}

TEST_F(AnEmbeddedBackend, IsNowhereElse) {
  EXPECT_EQ(post(body(purchase), "/").status, 404);
  EXPECT_EQ(post(body(purchase), "/functions/v1/sms-extraction/more").status, 404);
  EXPECT_EQ(backend_.storedTransactions(), 0U);
}

TEST_F(AnEmbeddedBackend, IsPostedTo) {
  const std::string request = body(purchase);
  EXPECT_EQ(
      backend_.answer({.method = "GET", .target = "/functions/v1/sms-extraction", .body = request})
          .status,
      405);
}

TEST_F(AnEmbeddedBackend, RefusesABodyThatIsNotFourStrings) {
  EXPECT_EQ(post("").status, 400);
  EXPECT_EQ(post("[]").status, 400);
  EXPECT_EQ(post("{}").status, 400);
  EXPECT_EQ(post(R"({"sms_text":"a","user_id":"b","expense_date":"c"})").status, 400);
  EXPECT_EQ(post(R"({"sms_text":"a","user_id":"b","expense_date":"c","idempotency_key":1})").status,
            400);
  EXPECT_EQ(
      post(R"({"sms_text":"a","user_id":null,"expense_date":"c","idempotency_key":"d"})").status,
      400);
  EXPECT_EQ(
      post(R"({"sms_text":"a","user_id":"b","expense_date":"c","idempotency_key":"d","more":"e"})")
          .status,
      400);
  EXPECT_EQ(backend_.storedTransactions(), 0U);
}

TEST_F(AnEmbeddedBackend, StoresOnceForAKeyThatComesTwiceAtTheSameTime) {
  std::vector<EmbeddedBackend::Answer> answers(8);
  std::vector<std::thread> callers;
  const std::string request = body(purchase);
  for (auto& answer : answers) {
    callers.emplace_back([this, &answer, &request] { answer = post(request); });
  }
  for (auto& caller : callers) caller.join();
  for (const auto& answer : answers) EXPECT_EQ(answer, answers.front());
  EXPECT_EQ(answers.front().status, 200);
  EXPECT_EQ(backend_.storedTransactions(), 1U);
}

}  // namespace
}  // namespace kivo
