#include "platform/linux/http/http_endpoint.h"

#include <charconv>
#include <system_error>
#include <utility>

#include <sys/un.h>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {

using platform::URLError;

namespace {

int hexadecimalDigit(char digit) {
  if (digit <= '9') return digit - '0';
  return (digit | 0x20) - 'a' + 10;
}

// `text`, whose percent-encodings are well-formed, without them.
std::string decoded(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%') {
      bytes +=
          static_cast<char>(hexadecimalDigit(text[at + 1]) * 16 + hexadecimalDigit(text[at + 2]));
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return bytes;
}

HTTPEndpoint onSocket(const platform::URL& url) {
  constexpr std::size_t longestPath = sizeof(sockaddr_un::sun_path) - 1;
  std::string path = decoded(url.host);
  if (!url.port.empty() || !path.starts_with('/') || path.size() > longestPath ||
      path.find('\0') != std::string::npos) {
    throw URLError(URLError::Code::unsupportedURL);
  }
  return {.secure = false, .port = 0, .authority = "localhost", .socketPath = std::move(path)};
}

}  // namespace

HTTPEndpoint HTTPEndpoint::of(const platform::URL& url) {
  if (url.scheme == "http+unix") return onSocket(url);
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

std::string urlOfSocket(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::string_view unreserved =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string url = "http+unix://";
  for (const char byte : path) {
    if (unreserved.find(byte) != std::string_view::npos) {
      url += byte;
    } else {
      const auto number = static_cast<unsigned char>(byte);
      url += {'%', digits[number / 16], digits[number % 16]};
    }
  }
  return url;
}

}  // namespace kivo::linux_platform
