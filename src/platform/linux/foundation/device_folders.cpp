#include "platform/linux/foundation/device_folders.h"

#include <cstdlib>
#include <utility>

namespace kivo::linux_platform {
namespace {

// The folder of `FoldersIn`, while one lives.
std::optional<std::filesystem::path>& chosenFolder() {
  static std::optional<std::filesystem::path> folder;
  return folder;
}

// Returns the folder in the variable; nullopt when it is unset, empty or relative.
std::optional<std::filesystem::path> folderFrom(const char* variable) {
  const char* const value = std::getenv(variable);
  if (value == nullptr) return std::nullopt;
  std::filesystem::path folder = value;
  if (!folder.is_absolute()) return std::nullopt;
  return folder;
}

// Returns the folder `name` of the chosen folder, or that in the variable, or else `inHome` below
// the home folder.
std::optional<std::filesystem::path> folderFromOrInHome(const char* name, const char* variable,
                                                        const std::filesystem::path& inHome) {
  if (chosenFolder()) return *chosenFolder() / name;
  if (auto folder = folderFrom(variable)) return folder;
  const auto home = folderFrom("HOME");
  if (!home) return std::nullopt;
  return *home / inHome;
}

}  // namespace

FoldersIn::FoldersIn(std::filesystem::path folder)
    : before_(std::exchange(chosenFolder(), std::move(folder))) {}

FoldersIn::~FoldersIn() { chosenFolder() = std::move(before_); }

std::optional<std::filesystem::path> dataHome() {
  return folderFromOrInHome("data", "XDG_DATA_HOME", ".local/share");
}

std::optional<std::filesystem::path> configHome() {
  return folderFromOrInHome("config", "XDG_CONFIG_HOME", ".config");
}

std::optional<std::filesystem::path> stateHome() {
  return folderFromOrInHome("state", "XDG_STATE_HOME", ".local/state");
}

std::optional<std::filesystem::path> runtimeFolder() {
  auto folder = folderFrom("XDG_RUNTIME_DIR");
  if (folder) *folder /= "kivo";
  return folder;
}

std::optional<std::filesystem::path> localBackendSocket() {
  auto folder = runtimeFolder();
  if (folder) *folder /= "ledger.sock";
  return folder;
}

}  // namespace kivo::linux_platform
