// Converts numbers to text and back, independent of any locale. NumberFormatter formats amounts for
// the user.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::platform {

/// Returns the shortest decimal text that reads back as `value`, with at least one digit after the
/// point for whole numbers: 150.0, 12.5, -0.0. Magnitudes from 1e-4 to below 1e16 have no exponent;
/// others have a signed one of at least two digits: 1e+16, 1e-05. Also "nan", "inf" and "-inf".
std::string doubleText(double value);

/// Parses a number; nullopt unless all of `text` is what C's strtod accepts in the C locale
/// (including infinity, NaN and hexadecimal). Empty text, a leading blank, anything after the
/// number and a NUL are not accepted.
std::optional<double> doubleFromText(std::string_view text);

/// Returns decimal digits, with a leading minus for negative values.
std::string integerText(std::int64_t value);

/// Parses an optional sign followed by one or more ASCII digits, within the signed 64-bit range;
/// nullopt for anything else.
std::optional<std::int64_t> integerFromText(std::string_view text);

}  // namespace kivo::platform
