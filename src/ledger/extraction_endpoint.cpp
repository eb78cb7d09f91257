#include "ledger/extraction_endpoint.h"

#include <string_view>
#include <utility>

#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "platform/linux/store/opening_failure.h"

namespace kivo::ledger {

using book::BookFailure;
using book::LedgerEntry;
using recording::Message;
using recording::Recorded;

namespace {

using Answer = UnixHttpServer::Answer;
using platform::DecodingError;

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;
constexpr int serviceUnavailable = 503;
constexpr const char* notOpened = "the book cannot be opened";

Answer refusal(int status, std::string_view error, std::string allow = "") {
  platform::JSONEncoder object;
  object.encodeString("error", error);
  return {.status = status, .body = object.text(), .allow = std::move(allow)};
}

// The backend's URL may end with a slash, so that the path begins with two.
bool isEndpoint(std::string_view target) {
  if (target.starts_with("//")) target.remove_prefix(1);
  return target == "/functions/v1/sms-extraction";
}

// Throws DecodingError when `body` is not a valid request.
Message messageFrom(std::string_view body) {
  const platform::JSONObject object = platform::JSONDecoder::object(body);
  Message message{.text = object.decodeString("sms_text"),
                  .userId = object.decodeString("user_id"),
                  .idempotencyKey = object.decodeString("idempotency_key")};
  const auto date = money::Day::fromText(object.decodeString("expense_date"));
  if (object.memberCount() != 4) throw DecodingError(DecodingError::Kind::dataCorrupted, "");
  if (!date) throw DecodingError(DecodingError::Kind::dataCorrupted, "expense_date");
  message.expenseDate = *date;
  return message;
}

}  // namespace

ExtractionEndpoint::ExtractionEndpoint(std::function<std::optional<money::CurrencyCode>()> currency,
                                       std::function<void(const LedgerEntry&)> review,
                                       recording::MessageReader read)
    : currency_(std::move(currency)), review_(std::move(review)), read_(std::move(read)) {}

Answer ExtractionEndpoint::answer(const UnixHttpServer::Request& request) {
  if (!isEndpoint(request.target)) return refusal(notFound, "not found");
  if (request.method != "POST") return refusal(methodNotAllowed, "method not allowed", "POST");
  try {
    return record(messageFrom(request.body));
  } catch (const DecodingError& error) {
    return refusal(badRequest, error.what());
  }
}

Answer ExtractionEndpoint::record(const Message& message) {
  try {
    if (!book_) book_ = book::Book::open();
    const auto currency = currency_();
    if (!currency) return refusal(serviceUnavailable, notOpened);
    if (!book_->isWhole()) {
      book_.reset();
      return refusal(serviceUnavailable, "the book is damaged");
    }
    Recorded recorded = recording::record(*book_, message, read_, *currency);
    if (recorded.entry && recorded.entry->state == LedgerEntry::State::review) {
      review_(*recorded.entry);
    }
    return {.status = ok, .body = std::move(recorded.answer), .allow = ""};
  } catch (const BookFailure& failure) {
    if (!book_) {
      linux_platform::tellNotOpened(failure);
      return refusal(serviceUnavailable, notOpened);
    }
    book_->tell(failure);
    book_.reset();  // the next request opens it again: the user may replace a damaged file
    return refusal(serviceUnavailable, "the book cannot be written");
  }
}

}  // namespace kivo::ledger
