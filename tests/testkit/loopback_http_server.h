// A small HTTP/1.1 server for this machine only. Speaks no TLS and knows no endpoint.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace kivo::testkit {

struct HttpRequest {
  std::string method;
  /// Path and query as sent.
  std::string target;
  std::string contentType;
  std::string body;
};

struct HttpAnswer {
  int status = 200;
  /// Sent as application/json.
  std::string body;
};

/// Listens on 127.0.0.1 at a port that it keeps to itself to its end, from construction on.
/// Requests are answered one after the other by a thread of its own; a body over 8 MiB is answered
/// with 413, what is no HTTP with a closed connection, and an exchange that takes longer than 10 s
/// is dropped.
class LoopbackHttpServer {
 public:
  using Handler = std::function<HttpAnswer(const HttpRequest&)>;

  /// `handler` is called on the server's thread; what it throws is answered with 500. Throws
  /// std::runtime_error when no port can be had.
  explicit LoopbackHttpServer(Handler handler);
  /// Stops; an exchange under way is dropped.
  ~LoopbackHttpServer();
  LoopbackHttpServer(const LoopbackHttpServer&) = delete;
  LoopbackHttpServer& operator=(const LoopbackHttpServer&) = delete;

  /// "http://127.0.0.1:<port>", the same whether it listens or not.
  [[nodiscard]] std::string url() const;

  /// From its return on, connections are refused, and those there were are closed. Does nothing
  /// when it does not listen.
  void stopListening();
  /// Listens again on the same port. Does nothing when it listens.
  void listen();

 private:
  struct Server;
  std::unique_ptr<Server> server_;
};

}  // namespace kivo::testkit
