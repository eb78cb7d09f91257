// Which locale the device is set to. Never sets the process's own.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// The language and region of the locale that the environment names for `category` ("LC_TIME",
/// "LC_MONETARY"): LC_ALL, else that variable, else LANG, the first that is not empty. Such as
/// "de_DE" or, with the script that a modifier names, "sr_Latn_RS"; codesets and other modifiers
/// are left out. "C", "POSIX" and no variable at all are "en_US_POSIX".
std::string deviceLocale(const char* category);

}  // namespace kivo::linux_platform
