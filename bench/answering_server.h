// A backend for measurements, in a process of its own: each request is told of as a saved expense.
// Checks nothing that it is sent.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "testkit/test_authority.h"

namespace kivo::bench {

/// Ends with its life. To be made while this process has no other thread and no store open.
class AnsweringServer {
 public:
  /// Answers each request `delay` after it has come; the amount and the description of the expense
  /// are other ones each time. Speaks TLS with an `identity`.
  explicit AnsweringServer(std::chrono::milliseconds delay = std::chrono::milliseconds(0),
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
