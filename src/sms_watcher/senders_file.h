// Reads and writes the settings file with the senders whose messages are handed on.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/linux/store/settings_file.h"

namespace kivo::SendersFile {

/// Returns the path of kivo/sms-watcher.toml in the user's configuration folder; nullopt without a
/// home folder.
std::optional<std::filesystem::path> place();

/// The content of the file.
struct Content {
  /// In the file's order; empty when there is no file.
  std::vector<std::string> senders = {};
  /// The file's modification time; the epoch when there is no file.
  platform::Moment changed = {};
};

/// Reads the file. A missing file, or one without a key, has no senders. Throws Failure with one
/// line that quotes nothing from the file when it cannot be used.
Content read();

/// Locks the file against other programs that change it, as SettingsLock does; to be held from
/// before `read` until after `write`.
[[nodiscard]] linux_platform::SettingsLock lock();

/// As `read`, but a file with an invalid sender cannot be used either.
Content readValid();

/// Replaces the file atomically and durably, and creates it and its folders for the user only. If
/// the file is a symbolic link, replaces its target. Throws Failure when a step failed; the file
/// then has either its old or its new content.
void write(const std::vector<std::string>& senders);

}  // namespace kivo::SendersFile
