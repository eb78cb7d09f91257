// Answers extraction requests from the book. Opens no socket.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "book/book.h"
#include "ledger/budget_notice.h"
#include "ledger/http_server.h"
#include "recording/recording.h"

namespace kivo::ledger {

/// The extraction endpoint. Opens the book at the first request. Not thread-safe.
class ExtractionEndpoint {
 public:
  /// `currency` returns the currency of the book, absent when it cannot be read. It is called for
  /// each message. After new entries are durable, `review` is called with each that is in review,
  /// and `budget`, unless it is empty, with each notification that `takeBudgetNotice` returns.
  ExtractionEndpoint(std::function<std::optional<money::CurrencyCode>()> currency,
                     std::function<void(const book::LedgerEntry&)> review,
                     recording::MessageReader read = recognition::read,
                     std::function<void(const BudgetNotice&)> budget = {});

  /// Returns the answers to `requests`, in their order. Those that record a message are one step of
  /// the book: all are durable together, or all are 503. The answer to a POST to
  /// /functions/v1/sms-extraction whose body is an object of exactly the request's four strings,
  /// with an existing date, is 200 and the response record; it is 400 for another body, 404 for
  /// another path, 405 for another method, 403 for another user than that of the request, if it has
  /// one, and 503 when the book cannot be opened or written or is
  /// damaged, or its currency cannot be read. After 503 nothing is stored, and the next request
  /// tries again; a line on standard error gives the reason, once for repeated
  /// failures to open. The body of every status but 200 is `{"error": ...}`.
  std::vector<HttpServer::Answer> answers(const std::vector<HttpServer::Request>& requests);

 private:
  /// Takes the steps again when a change of others crossed them. Throws nothing of the book.
  std::vector<HttpServer::Answer> record(const std::vector<recording::Message>& messages);
  /// Throws BookFailure; `book_` is absent when it could not be opened.
  std::vector<HttpServer::Answer> recordOnce(const std::vector<recording::Message>& messages);
  std::vector<HttpServer::Answer> answersOf(const std::vector<recording::Recorded>& recorded,
                                            const money::CurrencyCode& currency);
  void notify(const book::LedgerEntry& entry, const money::CurrencyCode& currency);

  std::function<std::optional<money::CurrencyCode>()> currency_;
  std::function<void(const book::LedgerEntry&)> review_;
  recording::MessageReader read_;
  std::function<void(const BudgetNotice&)> budget_;
  std::optional<book::Book> book_;
};

}  // namespace kivo::ledger
