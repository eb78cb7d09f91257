// The currency that the book is kept in.
#pragma once

#include <optional>
#include <string>

namespace kivo::ledger {

/// Returns the currency of the shared store in upper case, EGP when it has none. Absent, after one
/// line on standard error, when the store cannot be opened.
std::optional<std::string> bookCurrency();

}  // namespace kivo::ledger
