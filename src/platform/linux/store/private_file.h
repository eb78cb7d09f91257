// Writes a whole file that only its owner can read. Creates no folder.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// Puts a file (0600) that holds `text` at `path`, in place of a regular file that is there. A
/// reader of `path` finds the old file or the new one, also after a crash; the new one is synced
/// before this returns. Until then it is `path` with six more characters after a point. Returns
/// nullopt when that succeeds, else a reason for the person; then `path` is as it was. A symbolic
/// link, a folder or a device is refused: a rename would take the place of the link or the device
/// itself.
std::optional<std::string> writePrivateFile(const std::filesystem::path& path,
                                            std::string_view text);

}  // namespace kivo::linux_platform
