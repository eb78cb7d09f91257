// An HTTP/1.1 server on a UNIX socket. The socket's permissions decide who may connect.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ledger/listening_socket.h"

namespace kivo::ledger {

/// A single-threaded server: the event loop of `run` serves all connections and calls the handler
/// with the requests that wait together. Closes each connection after one response.
class UnixHttpServer {
 public:
  struct Request {
    std::string method;
    /// The request target as sent, with its query.
    std::string target;
    std::string body;
  };
  struct Answer {
    int status = 200;
    /// JSON, sent as application/json.
    std::string body;
    /// The value of the Allow header; empty to send no such header.
    std::string allow;
  };
  /// Returns an answer for each of the requests, of which there are 1 to 64, in their order.
  using Handler = std::function<std::vector<Answer>(const std::vector<Request>&)>;

  /// `handler` must not throw.
  explicit UnixHttpServer(Handler handler) : handler_(std::move(handler)) {}

  /// Accepts connections on `socket` until SIGTERM or SIGINT, or until no connection was open for
  /// `idleLimit`, if given. Then stops accepting, closes connections whose request is incomplete,
  /// and returns when the other responses are sent. Answers a body over 1 MiB with 413 and other
  /// invalid HTTP with 400. Closes a connection after 10 s without a complete exchange. Throws
  /// Failure when the system refuses it a file descriptor at the start.
  void run(const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit);

 private:
  Handler handler_;
};

}  // namespace kivo::ledger
