// Parses the TOML of a settings file. Knows no keys.
#pragma once

#include <optional>
#include <string>

#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

namespace kivo::linux_platform {

/// The content of a settings file.
struct SettingsTable {
  /// Empty when there is an error.
  toml::table table = {};
  /// The line and why it cannot be used; quotes nothing from the file.
  std::optional<std::string> error = {};
};

/// Parses `text`, in which dots may occur only within quotes and in comments: no setting has a
/// dotted key, and the parser would exhaust the stack with one of 100,000 parts.
SettingsTable settingsTable(const std::string& text);

}  // namespace kivo::linux_platform
