// The user's folders for data, settings and state. Does not create them.
#pragma once

#include <filesystem>
#include <optional>

namespace kivo::linux_platform {

/// While it lives, `dataHome`, `configHome` and `stateHome` are the folders data, config and state
/// of one folder: a process that keeps several people's data uses one at a time. The last one made
/// counts. Only for processes in which no other thread asks for these folders.
class FoldersIn {
 public:
  explicit FoldersIn(std::filesystem::path folder);
  ~FoldersIn();
  FoldersIn(const FoldersIn&) = delete;
  FoldersIn& operator=(const FoldersIn&) = delete;

 private:
  std::optional<std::filesystem::path> before_;
};

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
