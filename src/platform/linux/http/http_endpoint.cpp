#include "platform/linux/http/http_endpoint.h"

#include <charconv>
#include <system_error>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {

using platform::URLError;

HTTPEndpoint HTTPEndpoint::of(const platform::URL& url) {
  const bool secure = url.scheme == "https";
  // An IPvFuture address is not a name: a lookup would find another host.
  const bool reachable = !url.host.empty() && !url.host.starts_with('[');
  if ((!secure && url.scheme != "http") || !reachable) {
    throw URLError(URLError::Code::unsupportedURL);
  }
  const std::uint16_t usual = secure ? 443 : 80;
  std::uint16_t port = usual;
  if (!url.port.empty()) {
    const char* const end = url.port.data() + url.port.size();
    const auto read = std::from_chars(url.port.data(), end, port);
    if (read.ec != std::errc() || port == 0) throw URLError(URLError::Code::unsupportedURL);
  }
  const bool numericIPv6 = url.host.find(':') != std::string::npos;
  std::string authority = numericIPv6 ? "[" + url.host + "]" : url.host;
  if (port != usual) authority += ":" + std::to_string(port);
  return {.secure = secure, .port = port, .authority = std::move(authority)};
}

}  // namespace kivo::linux_platform
