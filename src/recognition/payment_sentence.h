// Reads the sentence that the expense intent writes: "Paid 25.0 EGP at Cafe".
#pragma once

#include <optional>
#include <string_view>

#include "recognition/reading.h"

namespace kivo::recognition {

/// The reading of `text` when it is that sentence; absent for any other text. The amount is the
/// shortest text of a double, which may have an exponent. Without a currency, it is in the book's.
/// The outcome is `needsReview` when the amount has too many decimals for its currency, is too
/// large or is not in the book's currency.
std::optional<Reading> paymentSentence(std::string_view text,
                                       const money::CurrencyCode& bookCurrency);

}  // namespace kivo::recognition
