// A loopback server that behaves, or misbehaves, as a test scripts it. Understands of HTTP only
// where a request ends.
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

/// One accepted connection, with TLS under way where the server has it. Its calls block, and come
/// back early when the peer goes away or the server ends; a script then just runs to its end, and
/// the connection is closed after it.
class ServerConnection {
 public:
  virtual ~ServerConnection() = default;

  /// The host name that the peer wanted in its TLS handshake; empty when it named none.
  [[nodiscard]] virtual std::string wantedName() const = 0;
  /// Reads one request to the end of its body, as Content-Length tells it, and yields its bytes;
  /// what there is of it when the peer ends first. Kept for `ScriptedServer::requests`.
  virtual std::string readRequest() = 0;
  /// Sends `bytes`, or what the peer takes of them.
  virtual void write(std::string_view bytes) = 0;
  /// Sends byte for byte with a pause before each.
  void drip(std::string_view bytes, std::chrono::milliseconds pause);
  /// Does nothing for `time`; true when the peer ended the connection meanwhile.
  virtual bool idle(std::chrono::milliseconds time = std::chrono::seconds(30)) = 0;
  /// Ends the connection with a reset instead of a regular end.
  virtual void reset() = 0;
  /// Ends the connection without the good-bye that TLS wants. As usual where there is no TLS.
  virtual void closeRudely() = 0;
  /// Sends an alert that ends TLS at once, encrypted as it has to be by now; afterwards nothing can
  /// be read or written. Does nothing where there is no TLS.
  virtual void sendFatalAlert() = 0;
};

using Script = std::function<void(ServerConnection&)>;

/// How a server is reached.
struct ServerOptions {
  /// "127.0.0.1" or "::1".
  std::string address = "127.0.0.1";
  /// 0 is any that is free.
  std::uint16_t port = 0;
  /// With an identity the server speaks TLS, and the script begins after a good handshake.
  std::optional<ServerIdentity> identity = {};
  /// TLS 1.1 and nothing newer.
  bool onlyOldTls = false;
};

/// Runs its script on every connection, each on a thread of its own. Ends with its life.
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
  /// How many connections were accepted so far.
  [[nodiscard]] int connections() const;
  /// Waits until so many connections were accepted, or requests read; false after 10 s.
  [[nodiscard]] bool waitForConnections(int count) const;
  [[nodiscard]] bool waitForRequests(int count) const;

  /// What all of this shares.
  struct State;

 private:
  std::shared_ptr<State> state_;
};

/// A whole answer in HTTP/1.1 with `body` as JSON.
std::string httpAnswer(int status, std::string_view body);

/// Reads the request, then sends `bytes` and ends the connection.
Script answering(std::string bytes);

}  // namespace kivo::testkit
