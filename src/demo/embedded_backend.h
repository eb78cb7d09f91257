// The backend's extraction endpoint, for trying the extension without one. Opens no socket and
// knows no HTTP beyond a request's pieces; forgets everything at its end.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace kivo {

/// Answers extraction requests by rule (ledger/recognition). All operations may be called from any
/// thread.
class EmbeddedBackend {
 public:
  /// A request as the endpoint sees it; `target` is the path with its query, if any.
  struct Request {
    std::string_view method;
    std::string_view target;
    std::string_view body;
  };
  /// `status` as HTTP counts; `body` is JSON.
  struct Answer {
    int status = 0;
    std::string body;

    bool operator==(const Answer&) const = default;
  };

  /// It books in `userCurrency`; a sum in another currency needs a review and is not stored.
  explicit EmbeddedBackend(std::string userCurrency);

  /// 200 and an SMSExtractionResponse for a POST to /functions/v1/sms-extraction whose body is an
  /// object of exactly the four strings of a request; 400 for another body, 404 elsewhere and 405
  /// for another method. A key that was answered before gets the same answer, byte for byte, and
  /// nothing is stored again.
  Answer answer(const Request& request);

  /// How many transactions it has stored.
  [[nodiscard]] std::size_t storedTransactions() const;

 private:
  const std::string userCurrency_;
  mutable std::mutex mutex_;
  std::map<std::string, std::string> answers_;  // by idempotency key
  std::size_t stored_ = 0;
};

}  // namespace kivo
