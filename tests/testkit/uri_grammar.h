// Reads URI references by the grammar of RFC 3986, rule by rule, to compare a parser with.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/foundation/url.h"

namespace kivo::testkit {

/// The longest text that `readByGrammar` takes, in bytes.
inline constexpr std::size_t longestUriText = 63;

/// The pieces that the grammar finds in `text`; none when it is no URI reference. Throws
/// std::logic_error when there is more than one way to read it, std::length_error when it is longer
/// than `longestUriText`.
std::optional<platform::URL> readByGrammar(std::string_view text);

}  // namespace kivo::testkit
