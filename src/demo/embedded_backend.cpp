#include "demo/embedded_backend.h"

#include <utility>

#include "extraction/sms_extraction_response.h"
#include "ledger/recognition/reading.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/number_text.h"

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

SMSExtractionResponse responseTo(const ledger::Reading& reading, const std::string& expenseDate,
                                 std::size_t number) {
  switch (reading.outcome) {
    case ledger::Outcome::declined:
      return {.saved = false, .reason = "declined"};
    case ledger::Outcome::notATransaction:
      return {.saved = false, .reason = "not_a_transaction"};
    case ledger::Outcome::needsReview:
      return {.saved = false, .reason = "needs_review"};
    case ledger::Outcome::transaction:
      break;
  }
  const bool income = reading.kind == ledger::Kind::income;
  return {.saved = true,
          .transaction_type = income ? "income" : "expense",
          .expense = SMSExtractionResponse::SavedExpense{
              .id = "transaction-" + std::to_string(number),
              .description = reading.description,
              .amount = platform::doubleFromText(ledger::amountText(*reading.amount)).value(),
              .category = reading.category,
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

  const ledger::Reading reading = ledger::read(extraction.message, userCurrency_);
  const std::lock_guard lock(mutex_);
  const auto answered = answers_.find(extraction.idempotencyKey);
  if (answered != answers_.end()) return {ok, answered->second};
  const SMSExtractionResponse response = responseTo(reading, extraction.expenseDate, stored_ + 1);
  if (response.saved) ++stored_;
  return {ok, answers_.emplace(extraction.idempotencyKey, response.encode()).first->second};
}

std::size_t EmbeddedBackend::storedTransactions() const {
  const std::lock_guard lock(mutex_);
  return stored_;
}

}  // namespace kivo
