// Runs single exchanges of the platform's HTTP session in a test.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/foundation/errors.h"
#include "platform/foundation/url_session.h"
#include "platform/linux/concurrency/task_executor.h"

namespace kivo::testkit {

using Failure = platform::URLError::Code;

/// The outcome of an exchange: an answer or a failure, never both.
struct Outcome {
  std::optional<platform::URLAnswer> answer;
  std::optional<Failure> failure;
  std::chrono::milliseconds took{};

  /// The answer's status; 0 without one.
  [[nodiscard]] int status() const { return isHTTP() ? answer->response->statusCode : 0; }
  /// Whether there is an answer with a response.
  [[nodiscard]] bool isHTTP() const { return answer && answer->response; }
  /// The answer's body; "no answer" without one.
  [[nodiscard]] std::string body() const { return answer ? answer->data : "no answer"; }
};

/// A POST of `body` to `url`, which must parse, with the timeout `limit`.
platform::URLRequest post(const std::string& url, std::string body = "{}",
                          std::chrono::milliseconds limit = std::chrono::seconds(10));

/// A running exchange on the executor of the tests. Its session must outlive it.
class RunningExchange {
 public:
  RunningExchange(platform::URLSession& session, platform::URLRequest request);
  /// Cancels the task that waits for the exchange.
  void cancel() { task_.cancel(); }
  /// Waits for its end, which must come within 60 s.
  Outcome wait();

 private:
  std::shared_ptr<Outcome> outcome_ = std::make_shared<Outcome>();
  linux_platform::RunningTask task_;
};

/// Sends `request` and waits for the end of the exchange.
Outcome exchange(platform::URLSession& session, platform::URLRequest request);

}  // namespace kivo::testkit
