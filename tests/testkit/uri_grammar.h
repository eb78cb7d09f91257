// Parses URI references by the grammar of RFC 3986, rule by rule, as a reference for another
// parser.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/foundation/url.h"

namespace kivo::testkit {

/// The longest text that `readByGrammar` accepts, in bytes.
inline constexpr std::size_t longestUriText = 63;

/// The components of `text` by the grammar; absent when it is not a URI reference. Throws
/// std::logic_error when it is ambiguous, std::length_error when it is longer than
/// `longestUriText`.
std::optional<platform::URL> readByGrammar(std::string_view text);

}  // namespace kivo::testkit
