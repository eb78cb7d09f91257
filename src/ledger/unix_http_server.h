// An HTTP/1.1 server on a UNIX socket. Knows no endpoint and decides nothing about who may connect.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "ledger/listening_socket.h"

namespace kivo::ledger {

/// Answers requests one after the other, on the thread that calls `run`; connections wait side by
/// side. One exchange per connection.
class UnixHttpServer {
 public:
  struct Request {
    std::string method;
    /// Path and query as sent.
    std::string target;
    std::string body;
  };
  struct Answer {
    int status = 200;
    /// Sent as application/json.
    std::string body;
    /// The value of the Allow header; empty for none.
    std::string allow;
  };
  using Handler = std::function<Answer(const Request&)>;

  /// `handler` throws nothing.
  explicit UnixHttpServer(Handler handler) : handler_(std::move(handler)) {}

  /// Accepts connections on `socket` until SIGTERM or SIGINT, or until there was no request for
  /// `idleLimit`. Then accepts no more, and returns when the answers under way are sent; a request
  /// that has not arrived whole is dropped. A body over 1 MiB is answered with 413, other broken
  /// HTTP with 400, and an exchange that takes longer than 10 s is dropped.
  void run(const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit);

 private:
  Handler handler_;
};

}  // namespace kivo::ledger
