// Parses URLs into their components.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo::platform {

/// A parsed RFC 3986 URI reference. Nothing is decoded, normalised or added.
struct URL {
  /// Lower case; empty when absent.
  std::string scheme;
  /// A name or an IPv4 address as written, with its percent-encodings and without user information;
  /// an IPv6 address without its brackets; an IPvFuture address with them. Empty when absent.
  std::string host;
  /// The digits after the colon as written; empty when absent. The range is not checked.
  std::string port;
  /// Path and query as sent in a request line; "/" when both are empty.
  std::string target;

  /// Parses `text` by the grammar of RFC 3986; nullopt when it is not a URI reference, when its
  /// port is not only digits up to "/", "?", "#" or the end, or when its host is not ASCII.
  static std::optional<URL> parse(std::string_view text);

  bool operator==(const URL&) const = default;
};

}  // namespace kivo::platform
