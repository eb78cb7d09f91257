// Reads and replaces a settings file of the user. Knows no format.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo::linux_platform {

/// The length of the longest settings file that is read, in bytes.
inline constexpr std::size_t longestSettings = 1 << 20;

/// A settings file as it was read.
struct SettingsFile {
  /// The content, empty when there is no file; nullopt when it is no regular file, is over
  /// `longestSettings`, or cannot be read.
  std::optional<std::string> text;
  /// The modification time; the epoch when there is no file.
  platform::Moment changed = {};
};

/// Reads the file at `path`, also through a symbolic link.
SettingsFile readSettingsFile(const std::filesystem::path& path);

/// Replaces the file at `path` atomically and durably, and creates it and its folders for the user
/// only. If it is a symbolic link, replaces its target. Returns false when a step failed; the file
/// then has either its old or its new content.
bool replaceSettingsFile(const std::filesystem::path& path, const std::string& text);

}  // namespace kivo::linux_platform
