// The parts of a URL that a connection needs.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/url.h"

namespace kivo::linux_platform {

/// How to connect to the host of a URL.
struct HTTPEndpoint {
  bool secure;
  std::uint16_t port;
  /// The value of the Host header: the host, in brackets when it is an IPv6 address, and the port
  /// unless it is the scheme's usual one.
  std::string authority;

  /// The endpoint that `url` names. Throws URLError unsupportedURL when it names none: a scheme
  /// other than http and https, no host or one in brackets, a port that is 0 or past 65535.
  static HTTPEndpoint of(const platform::URL& url);
};

}  // namespace kivo::linux_platform
