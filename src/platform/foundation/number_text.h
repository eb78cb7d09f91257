// The text forms of numbers, independent of any locale. For amounts a person reads see
// NumberFormatter.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::platform {

/// The shortest decimal text that reads back as `value`, with at least one digit after the point
/// for whole numbers: 150.0, 12.5, -0.0. Plain from 1e-4 up to, not including, 1e16 in magnitude,
/// else with a signed exponent of two digits or more: 1e+16, 1e-05. Also "nan", "inf", "-inf".
std::string doubleText(double value);

/// The number that `text` spells, or none. All of `text` must be what C's strtod accepts in the C
/// locale (infinity, not-a-number and hexadecimal included); empty text, a leading blank, anything
/// after the number and a NUL anywhere are not.
std::optional<double> doubleFromText(std::string_view text);

/// Decimal digits, with a leading minus for negatives.
std::string integerText(std::int64_t value);

/// The number that `text` spells, or none: an optional sign and one or more ASCII digits within the
/// signed 64-bit range, and nothing else.
std::optional<std::int64_t> integerFromText(std::string_view text);

}  // namespace kivo::platform
