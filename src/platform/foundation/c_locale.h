// The C locale, for numbers that mean the same on every device. Formats nothing for a person.
#pragma once

#include <locale.h>

namespace kivo::platform {

/// The C locale as an object, made on first use and kept for the life of the process; whatever
/// locale the process or a thread of it has set changes nothing about it.
locale_t cLocale();

}  // namespace kivo::platform
