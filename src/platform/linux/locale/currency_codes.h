// Knows the currency codes of ISO 4217. Formats no amount.
#pragma once

#include <string_view>

namespace kivo::linux_platform {

/// Whether `code` is a code of ISO 4217, present or past, in either letter case.
bool isKnownCurrency(std::string_view code);

}  // namespace kivo::linux_platform
