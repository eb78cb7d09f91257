// The sentence that the expense intent writes: "Paid 25.0 EGP at Cafe".
#pragma once

#include <optional>
#include <string_view>

#include "recognition/reading.h"

namespace kivo::recognition {

/// Reads `text` as that sentence. Its number is the shortest text of a double, which may have an
/// exponent; an empty currency is the book's. Absent for any other text; `needsReview` for a number
/// that is no sum in its currency or for another currency than the book's.
std::optional<Reading> paymentSentence(std::string_view text, std::string_view bookCurrency);

}  // namespace kivo::recognition
