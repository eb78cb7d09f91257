// Reads, locks and replaces a settings file of the user. Knows no format.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "platform/foundation/date.h"
#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {

/// The length of the longest settings file that is read, in bytes.
inline constexpr std::size_t longestSettings = 1 << 20;

/// A settings file as it was read.
struct SettingsFile {
  /// The content; empty when there is no file.
  std::string text = {};
  /// The modification time; the epoch when there is no file.
  platform::Moment changed = {};
};

/// Reads the file at `path`, also through a symbolic link. Throws Failure with a sentence about
/// "it" when the file must not be used: it is not a regular file, is over `longestSettings`, cannot
/// be read, or a user other than this one and root can change it.
SettingsFile readSettingsFile(const std::filesystem::path& path);

/// Keeps two programs from changing a settings file at the same time, when each of them has a lock
/// from before it reads the file until it has replaced it. Locks the folder, so that no other file
/// is needed. File systems that lock no folders, such as NFS, are used without the lock.
class SettingsLock {
 public:
  /// Creates the folders above `path`, and waits until no other program has the lock.
  explicit SettingsLock(const std::filesystem::path& path);

 private:
  Descriptor folder_;
};

/// Replaces the file at `path` atomically and durably, and creates it and its folders for the user
/// only. If it is a symbolic link, replaces its target. Throws Failure with a sentence about "it"
/// when a step failed; the file then has either its old or its new content.
void replaceSettingsFile(const std::filesystem::path& path, const std::string& text);

}  // namespace kivo::linux_platform
