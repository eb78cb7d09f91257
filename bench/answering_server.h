// A backend for measurements, in a process of its own. Checks nothing that it is sent.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "testkit/test_authority.h"

namespace kivo::bench {

/// What the requests are told of as.
enum class Answers {
  /// A saved expense, with another amount and description each time.
  saved,
  /// No transaction.
  notSaved,
};

/// Ends with its life. To be made while this process has no other thread and no store open.
class AnsweringServer {
 public:
  /// Answers each request `delay` after it has come. Speaks TLS with an `identity`.
  explicit AnsweringServer(Answers answers,
                           std::chrono::milliseconds delay = std::chrono::milliseconds(0),
                           std::optional<testkit::ServerIdentity> identity = std::nullopt);
  ~AnsweringServer();
  AnsweringServer(const AnsweringServer&) = delete;
  AnsweringServer& operator=(const AnsweringServer&) = delete;

  /// Scheme, host and port, without a slash at the end.
  [[nodiscard]] std::string url() const;

 private:
  struct Process;
  std::unique_ptr<Process> process_;
};

}  // namespace kivo::bench
