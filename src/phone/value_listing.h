// Formats the values of a store for the user.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/foundation/user_defaults.h"

namespace kivo::ValueListing {

/// Whether control characters, line breaks included, are escaped.
enum class Controls { asTheyAre, escaped };

/// Returns `value` as text; nullopt when it is neither a text nor a number.
std::optional<std::string> valueText(const platform::UserDefaults::Value& value);

/// Formats one line for each value with its key, its type (text, float, integer or other) and the
/// value, in columns. Says so when there are none.
std::string text(const std::map<std::string, platform::UserDefaults::Value>& values,
                 Controls controls);

}  // namespace kivo::ValueListing
