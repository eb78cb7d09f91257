// The C locale, for numbers that look the same on every device.
#pragma once

#include <locale.h>

namespace kivo::platform {

/// Returns the C locale, created on first use and never freed. It does not depend on the locale of
/// the process or the thread. Thread-safe.
locale_t cLocale();

}  // namespace kivo::platform
