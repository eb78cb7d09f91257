// A loopback server that follows a script. Of HTTP it only detects the end of a request.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testkit/test_authority.h"

namespace kivo::testkit {

/// One accepted connection, after the TLS handshake if there is one. Its calls block, and return
/// early when the peer disconnects or the server ends; the script then runs to its end, and the
/// connection is closed after it.
class ServerConnection {
 public:
  virtual ~ServerConnection() = default;

  /// The host name of the peer's TLS handshake (SNI); empty without one.
  [[nodiscard]] virtual std::string requestedHostName() const = 0;
  /// Reads one request to the end of its body, by its Content-Length, and returns its bytes, or
  /// fewer when the peer disconnects first. Kept for `ScriptedServer::requests`.
  virtual std::string readRequest() = 0;
  /// Sends `bytes`, or as much as the peer accepts.
  virtual void write(std::string_view bytes) = 0;
  /// Sends each byte after a pause.
  void drip(std::string_view bytes, std::chrono::milliseconds pause);
  /// Does nothing for `time`; returns true when the peer disconnected meanwhile.
  virtual bool idle(std::chrono::milliseconds time = std::chrono::seconds(30)) = 0;
  /// Ends the connection with a reset instead of a regular end.
  virtual void reset() = 0;
  /// Ends the connection without close_notify. As usual without TLS.
  virtual void closeWithoutNotify() = 0;
  /// Sends an encrypted fatal TLS alert; afterwards nothing can be read or written. Does nothing
  /// without TLS.
  virtual void sendFatalAlert() = 0;
};

using Script = std::function<void(ServerConnection&)>;

/// The address and TLS settings of a server.
struct ServerOptions {
  /// "127.0.0.1" or "::1".
  std::string address = "127.0.0.1";
  /// 0 is any free port.
  std::uint16_t port = 0;
  /// With an identity the server uses TLS, and the script begins after a successful handshake.
  std::optional<ServerIdentity> identity = {};
  /// TLS 1.1 and nothing newer.
  bool onlyOldTls = false;
};

/// Runs its script on every connection, each on its own thread, until it is destroyed.
class ScriptedServer {
 public:
  explicit ScriptedServer(Script script, ServerOptions options = {});
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  [[nodiscard]] std::uint16_t port() const;
  /// Scheme, address and port, without a slash at the end.
  [[nodiscard]] std::string url() const;
  /// Every request read so far, in the order in which they ended.
  [[nodiscard]] std::vector<std::string> requests() const;
  /// The number of accepted connections.
  [[nodiscard]] int connections() const;
  /// Waits until so many connections were accepted, or requests read; returns false after 10 s.
  [[nodiscard]] bool waitForConnections(int count) const;
  [[nodiscard]] bool waitForRequests(int count) const;

  /// The shared state of these operations.
  struct State;

 private:
  std::shared_ptr<State> state_;
};

/// A complete HTTP/1.1 answer with `body` as JSON.
std::string httpAnswer(int status, std::string_view body);

/// Reads the request, then sends `bytes` and ends the connection.
Script answering(std::string bytes);

}  // namespace kivo::testkit
