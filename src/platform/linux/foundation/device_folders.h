// The user's folders for data, settings and state. Does not create them.
#pragma once

#include <filesystem>
#include <optional>

namespace kivo::linux_platform {

/// Returns $XDG_DATA_HOME, or ~/.local/share when that is unset, empty or relative; nullopt when
/// HOME is too.
std::optional<std::filesystem::path> dataHome();

/// Returns $XDG_CONFIG_HOME, or ~/.config when that is unset, empty or relative; nullopt when HOME
/// is too.
std::optional<std::filesystem::path> configHome();

/// Returns $XDG_STATE_HOME, or ~/.local/state when that is unset, empty or relative; nullopt when
/// HOME is too.
std::optional<std::filesystem::path> stateHome();

/// Returns the folder kivo below $XDG_RUNTIME_DIR, which goes when the user logs out; nullopt when
/// that is unset, empty or relative.
std::optional<std::filesystem::path> runtimeFolder();

/// Returns the path of the local backend's socket, ledger.sock in `runtimeFolder`; nullopt without
/// that folder.
std::optional<std::filesystem::path> localBackendSocket();

}  // namespace kivo::linux_platform
