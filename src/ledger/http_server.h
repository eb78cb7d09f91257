// An HTTP/1.1 server on a listening socket. Who may connect is the socket's matter.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ledger/listening_socket.h"

namespace kivo::ledger {

/// A single-threaded server: the event loop of `run` serves all connections and calls the handler
/// with the requests that wait together. Closes each connection after one response.
class HttpServer {
 public:
  struct Request {
    std::string method;
    /// The request target as sent, with its query.
    std::string target;
    std::string body;
    /// The only user whose messages it may hold; absent for any. The server leaves it absent.
    std::optional<std::string> user = {};
  };
  struct Answer {
    int status = 200;
    std::string body;
    /// The value of the Allow header; empty to send no such header.
    std::string allow = {};
    /// The value of the Content-Type header.
    std::string contentType = "application/json";
    /// Further headers by their names.
    std::map<std::string, std::string> headers = {};
  };
  /// Returns an answer for each of the requests, of which there are 1 to 64, in their order.
  using Handler = std::function<std::vector<Answer>(const std::vector<Request>&)>;
  /// Returns for how long a request waits before the handler gets it, at most 8 s.
  using Pacer = std::function<std::chrono::milliseconds(const Request&)>;

  /// `handler` and `pacer` must not throw. Without a pacer no request waits.
  explicit HttpServer(Handler handler, Pacer pacer = {})
      : handler_(std::move(handler)), pacer_(std::move(pacer)) {}

  /// Accepts connections on `socket` until SIGTERM or SIGINT, or until no connection was open for
  /// `idleLimit`, if given. Then stops accepting, closes connections whose request is incomplete,
  /// and returns when the other responses are sent; requests wait no longer then. Answers a body
  /// over 1 MiB with 413 and other invalid HTTP with 400. Closes a connection after 10 s without a
  /// complete request, and after 10 s in which the response cannot be sent. While 512 connections
  /// are open, others wait in the system's queue. Throws Failure when the system refuses it a file
  /// descriptor at the start.
  void run(const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit);

 private:
  Handler handler_;
  Pacer pacer_;
};

}  // namespace kivo::ledger
