// The parts of a URL that a connection needs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/foundation/url.h"

namespace kivo::linux_platform {

/// How to connect to the host of a URL.
struct HTTPEndpoint {
  bool secure;
  std::uint16_t port;
  /// The value of the Host header: the host, in brackets when it is an IPv6 address, and the port
  /// unless it is the scheme's usual one.
  std::string authority;
  /// The path of a UNIX socket; empty for an endpoint on the network.
  std::string socketPath = {};

  /// Returns the endpoint of `url`. The host of http+unix is the percent-encoded absolute path of a
  /// socket. Throws URLError unsupportedURL for a scheme other than http, https and http+unix, for
  /// no host or one in brackets, and for a port that is 0 or above 65535; with http+unix also for
  /// any port, and for a host that is not an absolute path or too long for a socket.
  static HTTPEndpoint of(const platform::URL& url);
};

/// Returns the http+unix URL of the socket at `path`, which must be absolute, without a final
/// slash.
std::string urlOfSocket(std::string_view path);

}  // namespace kivo::linux_platform
