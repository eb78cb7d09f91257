// The values of a store as a person reads them. Knows no key's meaning.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/foundation/user_defaults.h"

namespace kivo::ValueListing {

/// What becomes of control characters, line breaks included.
enum class Controls { asTheyAre, escaped };

/// The text form of `value`; none for what is neither text nor number.
std::optional<std::string> valueText(const platform::UserDefaults::Value& value);

/// A line for each of `values` with its key, its type (text, float, integer or other) and its
/// value, in columns. Says so when there are none.
std::string text(const std::map<std::string, platform::UserDefaults::Value>& values,
                 Controls controls);

}  // namespace kivo::ValueListing
