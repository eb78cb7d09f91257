// Where this person's data lies on the disk. Makes no folder.
#pragma once

#include <filesystem>
#include <optional>

namespace kivo::linux_platform {

/// $XDG_DATA_HOME, or ~/.local/share when that is unset, empty or relative; none without a home.
std::optional<std::filesystem::path> dataHome();

}  // namespace kivo::linux_platform
