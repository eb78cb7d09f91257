#include "platform/foundation/url.h"

#include <algorithm>
#include <string>
#include <utility>

#include <arpa/inet.h>

// Splits a text at the delimiters of RFC 3986 and checks each component against its grammar
// (appendix A there). A component ends at the first delimiter that it cannot hold, so no character
// is looked at twice.
namespace kivo::platform {
namespace {

// The delimiters that a component may hold besides unreserved characters and percent-encodings.
constexpr std::string_view ofHost = "!$&'()*+,;=";
constexpr std::string_view ofUserInformation = "!$&'()*+,;=:";
constexpr std::string_view ofPath = "!$&'()*+,;=:@/";
constexpr std::string_view ofQueryOrFragment = "!$&'()*+,;=:@/?";

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool isUnreserved(char c) {
  return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool areDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), isDigit); }

bool isComponent(std::string_view text, std::string_view delimiters) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%') {
      if (text.size() - at < 3 || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) {
        return false;
      }
      at += 2;
    } else if (!isUnreserved(text[at]) && delimiters.find(text[at]) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isLetter(text.front()) &&
         std::all_of(text.begin(), text.end(), [](char c) {
           return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
         });
}

// Whether `text` is an IPv6 address, as it is written between brackets.
bool isIPv6Address(const std::string& text) {
  in6_addr address{};
  const auto belongs = [](char c) { return isHexDigit(c) || c == ':' || c == '.'; };
  return std::all_of(text.begin(), text.end(), belongs) &&
         inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

// Whether `text` is an IPvFuture address ("v1.x:y"), as it is written between brackets.
bool isIPvFuture(std::string_view text) {
  if (text.empty() || (text.front() != 'v' && text.front() != 'V')) return false;
  const std::size_t dot = std::min(text.find('.'), text.size());
  const std::string_view version = text.substr(1, dot - 1);
  const std::string_view address = text.substr(std::min(dot + 1, text.size()));
  return !version.empty() && std::all_of(version.begin(), version.end(), isHexDigit) &&
         !address.empty() && std::all_of(address.begin(), address.end(), [](char c) {
           return isUnreserved(c) || ofUserInformation.find(c) != std::string_view::npos;
         });
}

// Takes the beginning of `rest` up to the first of `delimiters`, or all of it.
std::string_view takeUntil(std::string_view& rest, std::string_view delimiters) {
  const std::string_view taken = rest.substr(0, rest.find_first_of(delimiters));
  rest.remove_prefix(taken.size());
  return taken;
}

// Takes the host off `rest`; none when it is not of the grammar.
std::optional<std::string> takeHost(std::string_view& rest) {
  if (!rest.starts_with('[')) {
    const std::string_view name = takeUntil(rest, ":");
    if (!isComponent(name, ofHost)) return std::nullopt;
    return std::string(name);
  }
  const std::string_view opened = takeUntil(rest, "]");
  if (rest.empty()) return std::nullopt;
  rest.remove_prefix(1);
  std::string address(opened.substr(1));
  if (isIPv6Address(address)) return address;
  if (!isIPvFuture(address)) return std::nullopt;
  return "[" + address + "]";
}

// Fills in host and port; false when `rest`, the text between "//" and the path, does not fit.
bool parseAuthority(std::string_view rest, URL& url) {
  if (const std::size_t at = rest.find('@'); at != std::string_view::npos) {
    if (!isComponent(rest.substr(0, at), ofUserInformation)) return false;
    rest.remove_prefix(at + 1);
  }
  auto host = takeHost(rest);
  if (!host) return false;
  url.host = std::move(*host);
  if (rest.empty()) return true;
  url.port = rest.substr(1);
  return rest.front() == ':' && areDigits(url.port);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return lower;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  URL url;
  // A colon in the first segment ends a scheme: no other URI reference has one there.
  const std::size_t end = std::min(text.find_first_of(":/?#"), text.size());
  if (text.substr(end).starts_with(':')) {
    const std::string_view scheme = text.substr(0, end);
    if (!isScheme(scheme)) return std::nullopt;
    url.scheme = lowerCase(scheme);
    text.remove_prefix(end + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    if (!parseAuthority(takeUntil(text, "/?#"), url)) return std::nullopt;
  }
  const std::string_view path = takeUntil(text, "?#");
  const std::string_view query = takeUntil(text, "#");  // with its question mark
  const std::string_view fragment = text.substr(text.empty() ? 0 : 1);
  if (!isComponent(path, ofPath) || !isComponent(query, ofQueryOrFragment) ||
      !isComponent(fragment, ofQueryOrFragment)) {
    return std::nullopt;
  }
  url.target.append(path.empty() ? "/" : path).append(query);
  return url;
}

}  // namespace kivo::platform
