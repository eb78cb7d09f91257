// Which texts are URLs, and their pieces. Opens no connection and judges no endpoint.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo::platform {

/// A parsed RFC 3986 URI reference. Nothing is decoded, normalised or added.
struct URL {
  /// Lower case; empty when the text has none.
  std::string scheme;
  /// A name or an IPv4 address as written, percent-encodings included, without user information; an
  /// IPv6 address without its brackets, an IPvFuture address with them. Empty when there is none.
  std::string host;
  /// The digits after the colon as written, empty when there are none. Not judged for range.
  std::string port;
  /// Path and query as they are sent in a request line, "/" when both are empty.
  std::string target;

  /// The URL that `text` spells by the grammar of RFC 3986; none when it is no URI reference. A
  /// port that is not digits up to "/", "?", "#" or the end, and a host that is not ASCII, do not
  /// parse.
  static std::optional<URL> parse(std::string_view text);

  bool operator==(const URL&) const = default;
};

}  // namespace kivo::platform
