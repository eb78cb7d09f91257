#include "demo/embedded_backend.h"

#include <utility>
#include <variant>

#include "demo/message_recogniser.h"
#include "extraction/sms_extraction_response.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"

namespace kivo {
namespace {

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;

struct Extraction {
  std::string message;
  std::string expenseDate;
  std::string idempotencyKey;
};

// Throws DecodingError for a body that is no request.
Extraction extractionFrom(std::string_view body) {
  const platform::JSONObject object = platform::JSONDecoder::object(body);
  if (object.memberCount() != 4) {
    throw platform::DecodingError(platform::DecodingError::Kind::dataCorrupted, "");
  }
  (void)object.decodeString("user_id");  // required, though everybody is read alike
  return {.message = object.decodeString("sms_text"),
          .expenseDate = object.decodeString("expense_date"),
          .idempotencyKey = object.decodeString("idempotency_key")};
}

// A base URL may end with a slash, which doubles the one in front of the path.
bool isEndpoint(std::string_view target) {
  if (target.starts_with("//")) target.remove_prefix(1);
  return target == "/functions/v1/sms-extraction";
}

SMSExtractionResponse responseTo(const MessageRecogniser::Recognition& recognition,
                                 const std::string& expenseDate, std::size_t number) {
  if (std::holds_alternative<MessageRecogniser::Declined>(recognition)) {
    return {.saved = false, .reason = "declined"};
  }
  const auto* const transaction = std::get_if<MessageRecogniser::Transaction>(&recognition);
  if (transaction == nullptr) return {.saved = false, .reason = "not_a_transaction"};
  const bool income = transaction->kind == MessageRecogniser::Transaction::Kind::income;
  return {
      .saved = true,
      .transaction_type = income ? "income" : "expense",
      .expense = SMSExtractionResponse::SavedExpense{.id = "transaction-" + std::to_string(number),
                                                     .description = transaction->description,
                                                     .amount = transaction->amount,
                                                     .category = transaction->category,
                                                     .expense_date = expenseDate}};
}

}  // namespace

EmbeddedBackend::EmbeddedBackend(std::string userCurrency)
    : userCurrency_(std::move(userCurrency)) {}

EmbeddedBackend::Answer EmbeddedBackend::answer(const Request& request) {
  if (!isEndpoint(request.target)) return {notFound, R"({"error":"not found"})"};
  if (request.method != "POST") return {methodNotAllowed, R"({"error":"method not allowed"})"};
  Extraction extraction;
  try {
    extraction = extractionFrom(request.body);
  } catch (const platform::DecodingError&) {
    return {badRequest, R"({"error":"bad request"})"};
  }

  const auto recognition = MessageRecogniser::recognise(extraction.message, userCurrency_);
  const std::lock_guard lock(mutex_);
  const auto answered = answers_.find(extraction.idempotencyKey);
  if (answered != answers_.end()) return {ok, answered->second};
  const SMSExtractionResponse response =
      responseTo(recognition, extraction.expenseDate, stored_ + 1);
  if (response.saved) ++stored_;
  return {ok, answers_.emplace(extraction.idempotencyKey, response.encode()).first->second};
}

std::size_t EmbeddedBackend::storedTransactions() const {
  const std::lock_guard lock(mutex_);
  return stored_;
}

}  // namespace kivo
