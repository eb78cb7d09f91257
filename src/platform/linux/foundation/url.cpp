#include "platform/foundation/url.h"

#include <algorithm>
#include <utility>

// Debian ships Boost.URL as headers and a library; this is the library, compiled into this file.
#include <boost/url/src.hpp>

namespace kivo::platform {
namespace {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return lower;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  const auto parsed = boost::urls::parse_uri_reference({text.data(), text.size()});
  if (!parsed) return std::nullopt;

  // What follows host and port is a path that begins with a slash, if any. The library also takes
  // "http://host:abc/x", as an empty port and the path "abc/x": the request would go to port 80.
  const std::string_view path = parsed->encoded_path();
  if (parsed->has_authority() && !path.empty() && path.front() != '/') return std::nullopt;

  std::string target(parsed->encoded_target());
  if (path.empty()) target.insert(0, "/");
  return URL{.scheme = lowerCase(parsed->scheme()),
             .host = std::string(parsed->encoded_host_address()),
             .port = std::string(parsed->port()),
             .target = std::move(target)};
}

}  // namespace kivo::platform
