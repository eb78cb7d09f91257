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

  /// The endpoint that `url` names. The host of http+unix is the percent-encoded absolute path of a
  /// socket. Throws URLError unsupportedURL when it names none: another scheme than http, https and
  /// http+unix, no host or one in brackets, a port that is 0 or past 65535; with http+unix any
  /// port, and a host that is no path or longer than a socket's may be.
  static HTTPEndpoint of(const platform::URL& url);
};

/// The http+unix URL of the socket at `path`, which is absolute, without a slash at its end.
std::string urlOfSocket(std::string_view path);

}  // namespace kivo::linux_platform
