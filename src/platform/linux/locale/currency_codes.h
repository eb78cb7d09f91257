// The currency codes of ISO 4217.
#pragma once

#include <string_view>

namespace kivo::linux_platform {

/// Whether `code` is a current or former code of ISO 4217, in either letter case.
bool isKnownCurrency(std::string_view code);

}  // namespace kivo::linux_platform
