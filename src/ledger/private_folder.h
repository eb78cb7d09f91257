// Opens a folder in which no other user can replace this user's files.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/linux/process/descriptor.h"

namespace kivo::ledger {

/// Opens `folder`, created with the folders above it by the umask when it is missing. Throws
/// Failure, whose sentence ends with `advice`, when it is a symbolic link, belongs to a user other
/// than this one or root, can be written by others and has no sticky bit, or cannot be opened.
linux_platform::Descriptor openPrivateFolder(const std::filesystem::path& folder,
                                             std::string_view advice);

}  // namespace kivo::ledger
