// The currency that the book is kept in.
#pragma once

#include <optional>

#include "money/currency_code.h"

namespace kivo::recording {

/// Returns the currency of the shared store: EGP when it has none, XXX when its text is no code.
/// Absent, after one line on standard error, when the store cannot be opened.
std::optional<money::CurrencyCode> bookCurrency();

}  // namespace kivo::recording
