// Reads the device's locale from the environment. Does not set the locale of the process.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Returns the language and region that the environment sets for `category` ("LC_TIME",
/// "LC_MONETARY"): the first of LC_ALL, that variable and LANG that is not empty. For example
/// "de_DE", or "sr_Latn_RS" with the script that a modifier names. Drops codesets and other
/// modifiers. Returns "en_US_POSIX" for "C", "POSIX" and when no variable is set.
std::string deviceLocale(const char* category);

}  // namespace kivo::linux_platform
