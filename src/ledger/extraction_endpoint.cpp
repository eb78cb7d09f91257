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

using Answer = HttpServer::Answer;
using Request = HttpServer::Request;
using platform::DecodingError;

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
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

// The answer to a request that records no message.
struct Refused {
  Answer answer;
};

// Throws Refused.
Message messageOf(const Request& request) {
  if (!isEndpoint(request.target)) throw Refused{refusal(notFound, "not found")};
  if (request.method != "POST") {
    throw Refused{refusal(methodNotAllowed, "method not allowed", "POST")};
  }
  try {
    Message message = messageFrom(request.body);
    if (request.user && message.userId != *request.user) {
      throw Refused{refusal(forbidden, "user_id is not the person of this address")};
    }
    return message;
  } catch (const DecodingError& error) {
    throw Refused{refusal(badRequest, error.what())};
  }
}

}  // namespace

ExtractionEndpoint::ExtractionEndpoint(std::function<std::optional<money::CurrencyCode>()> currency,
                                       std::function<void(const LedgerEntry&)> review,
                                       recording::MessageReader read,
                                       std::function<void(const BudgetNotice&)> budget)
    : currency_(std::move(currency)),
      review_(std::move(review)),
      read_(std::move(read)),
      budget_(std::move(budget)) {}

std::vector<Answer> ExtractionEndpoint::answers(const std::vector<Request>& requests) {
  std::vector<Answer> answers;
  std::vector<Message> messages;
  std::vector<std::size_t> places;  // of the messages' answers
  for (const Request& request : requests) {
    try {
      messages.push_back(messageOf(request));
      places.push_back(answers.size());
      answers.emplace_back();
    } catch (const Refused& refused) {
      answers.push_back(refused.answer);
    }
  }
  if (messages.empty()) return answers;
  auto recorded = record(messages);
  for (std::size_t at = 0; at < places.size(); ++at) {
    answers[places[at]] = std::move(recorded[at]);
  }
  return answers;
}

std::vector<Answer> ExtractionEndpoint::record(const std::vector<Message>& messages) {
  constexpr int mostAttempts = 5;
  const auto all = [&](Answer answer) { return std::vector<Answer>(messages.size(), answer); };
  for (int left = mostAttempts;; --left) {
    try {
      return recordOnce(messages);
    } catch (const BookFailure& failure) {
      if (!book_) {
        linux_platform::tellNotOpened(failure);
        return all(refusal(serviceUnavailable, notOpened));
      }
      const bool isLast = failure.cause() != BookFailure::Cause::crossed || left == 1;
      if (isLast) book_->tell(failure);
      book_.reset();  // opened again when it is used next: the user may replace a damaged file
      if (isLast) return all(refusal(serviceUnavailable, "the book cannot be written"));
    }
  }
}

std::vector<Answer> ExtractionEndpoint::recordOnce(const std::vector<Message>& messages) {
  const auto all = [&](Answer answer) { return std::vector<Answer>(messages.size(), answer); };
  if (!book_) book_ = book::Book::open();
  const auto currency = currency_();
  if (!currency) return all(refusal(serviceUnavailable, notOpened));
  if (!book_->isWhole()) {
    book_.reset();
    return all(refusal(serviceUnavailable, "the book is damaged"));
  }
  std::vector<Recorded> recorded;
  const auto recordAll = [&] {
    for (const Message& message : messages) {
      recorded.push_back(recording::record(*book_, message, read_, *currency));
    }
  };
  if (messages.size() == 1) {
    recordAll();  // a known key needs no step, and is answered when the book cannot be written
  } else {
    book_->inOneStep(recordAll);
  }
  return answersOf(recorded, *currency);
}

std::vector<Answer> ExtractionEndpoint::answersOf(const std::vector<Recorded>& recorded,
                                                  const money::CurrencyCode& currency) {
  std::vector<Answer> answers;
  for (const Recorded& one : recorded) {
    if (one.entry) notify(*one.entry, currency);
    answers.push_back({.status = ok, .body = one.answer});
  }
  return answers;
}

void ExtractionEndpoint::notify(const LedgerEntry& entry, const money::CurrencyCode& currency) {
  if (entry.state == LedgerEntry::State::review) return review_(entry);
  if (!budget_) return;
  try {
    if (const auto notice = takeBudgetNotice(*book_, entry, currency)) budget_(*notice);
  } catch (const BookFailure& failure) {  // the entry is durable all the same
    book_->tell(failure);
  }
}

}  // namespace kivo::ledger
