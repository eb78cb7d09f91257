// Where this person's data and settings lie on the disk. Makes no folder.
#pragma once

#include <filesystem>
#include <optional>

namespace kivo::linux_platform {

/// $XDG_DATA_HOME, or ~/.local/share when that is unset, empty or relative; none without a home.
std::optional<std::filesystem::path> dataHome();

/// $XDG_CONFIG_HOME, or ~/.config when that is unset, empty or relative; none without a home.
std::optional<std::filesystem::path> configHome();

/// $XDG_STATE_HOME, or ~/.local/state when that is unset, empty or relative; none without a home.
std::optional<std::filesystem::path> stateHome();

/// The socket of the backend on this machine, kivo/ledger.sock below $XDG_RUNTIME_DIR; none when
/// that is unset, empty or relative.
std::optional<std::filesystem::path> localBackendSocket();

}  // namespace kivo::linux_platform
