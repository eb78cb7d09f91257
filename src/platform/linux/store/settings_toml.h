// Parses the TOML of a settings file. Knows no keys.
#pragma once

#include <string>

#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

namespace kivo::linux_platform {

/// Parses `text`, in which dots may occur only within quotes and in comments: no setting has a
/// dotted key, and the parser would exhaust the stack with one of 100,000 parts. Throws Failure
/// with the line and the reason, and nothing quoted from the file, when it cannot be parsed.
toml::table settingsTable(const std::string& text);

}  // namespace kivo::linux_platform
