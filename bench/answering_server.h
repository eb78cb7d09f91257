// A backend for benchmarks, in its own process. Does not check requests.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "testkit/test_authority.h"

namespace kivo::bench {

/// The answer to every request.
enum class Answers {
  /// A saved expense with a different amount and description each time.
  saved,
  /// Not a transaction.
  notSaved,
};

/// The process ends when this object is destroyed. Create it while this process has no other thread
/// and no open store.
class AnsweringServer {
 public:
  /// Answers each request after `delay`. Uses TLS when `identity` is given.
  explicit AnsweringServer(Answers answers,
                           std::chrono::milliseconds delay = std::chrono::milliseconds(0),
                           std::optional<testkit::ServerIdentity> identity = std::nullopt);
  ~AnsweringServer();
  AnsweringServer(const AnsweringServer&) = delete;
  AnsweringServer& operator=(const AnsweringServer&) = delete;

  /// Returns scheme, host and port, without a final slash.
  [[nodiscard]] std::string url() const;

 private:
  struct Process;
  std::unique_ptr<Process> process_;
};

}  // namespace kivo::bench
