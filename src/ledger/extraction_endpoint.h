// The extraction endpoint over the book. Opens no socket.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ledger/book.h"
#include "ledger/unix_http_server.h"

namespace kivo::ledger {

/// Answers extraction requests. For one thread.
class ExtractionEndpoint {
 public:
  using BookOpener = std::function<std::optional<Book>()>;

  /// `currency` returns the currency that the book is kept in, absent when it cannot be read; it is
  /// asked for each message.
  /// `review` is called with each new entry that a person has to look at, once it is durable.
  ExtractionEndpoint(
      std::function<std::optional<std::string>()> currency,
      std::function<void(const LedgerEntry&)> review,
      BookOpener open = [] { return Book::open(); });

  /// Answers with 200 and a response record for a POST to /functions/v1/sms-extraction whose body
  /// is an object of the four strings of a request and whose date exists; 400 for another body, 404
  /// elsewhere, 405 for another method, and 503 when the book cannot be opened or written or its
  /// currency not be read, which a line on standard error explains: then nothing is stored, and the
  /// next request tries again. All bodies but that of 200 are `{"error": ...}`.
  UnixHttpServer::Answer answer(const UnixHttpServer::Request& request);

 private:
  UnixHttpServer::Answer record(const Message& message);

  std::function<std::optional<std::string>()> currency_;
  std::function<void(const LedgerEntry&)> review_;
  BookOpener open_;
  std::optional<Book> book_;
};

}  // namespace kivo::ledger
