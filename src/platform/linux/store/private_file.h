// Writes a whole file that only its owner can read. Creates no folder.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace kivo::linux_platform {

/// Puts a file (0600) that holds `text` at `path`, in place of a regular file that is there. A
/// reader of `path` finds the old file or the new one, also after a crash; the new one is synced
/// before this returns. Until then it is `path` with six more characters after a point. Throws
/// Failure with the reason alone, without the path, when it cannot be written; then `path` is as it
/// was. A symbolic link, a folder or a device is refused: a rename would take the place of the link
/// or the device itself.
void writePrivateFile(const std::filesystem::path& path, std::string_view text);
/// As above, with the content that `fill` gives the empty file `fresh`. It may throw Failure.
void writePrivateFile(const std::filesystem::path& path,
                      const std::function<void(const std::filesystem::path& fresh)>& fill);

}  // namespace kivo::linux_platform
