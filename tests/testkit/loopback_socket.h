// Loopback sockets that listen, stay silent or refuse connections.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kivo::testkit {

/// A socket that listens on `address` ("127.0.0.1" or "::1") and `port`, or any free one for 0,
/// with room for `backlog` connections. The caller closes it. Throws std::system_error.
int listeningSocket(const std::string& address, std::uint16_t port, int backlog);

/// The port that `socket` is bound to.
std::uint16_t portOf(int socket);

/// While it lives, a port on which connections are neither accepted nor refused.
class SilentPort {
 public:
  explicit SilentPort(const std::string& address = "127.0.0.1", std::uint16_t port = 0);
  ~SilentPort();
  SilentPort(const SilentPort&) = delete;
  SilentPort& operator=(const SilentPort&) = delete;
  [[nodiscard]] std::uint16_t port() const { return port_; }

 private:
  std::vector<int> sockets_;
  std::uint16_t port_;
};

/// While it lives, a port on which connections are refused.
class RefusedPort {
 public:
  explicit RefusedPort(const std::string& address = "127.0.0.1", std::uint16_t port = 0);
  ~RefusedPort();
  RefusedPort(const RefusedPort&) = delete;
  RefusedPort& operator=(const RefusedPort&) = delete;
  [[nodiscard]] std::uint16_t port() const { return port_; }

 private:
  int socket_;
  std::uint16_t port_;
};

}  // namespace kivo::testkit
