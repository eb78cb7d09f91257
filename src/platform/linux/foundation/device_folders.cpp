#include "platform/linux/foundation/device_folders.h"

#include <cstdlib>

namespace kivo::linux_platform {
namespace {

// The folder that the variable names; none when it is unset, empty or relative.
std::optional<std::filesystem::path> folderFrom(const char* variable) {
  const char* const value = std::getenv(variable);
  if (value == nullptr) return std::nullopt;
  std::filesystem::path folder = value;
  if (!folder.is_absolute()) return std::nullopt;
  return folder;
}

}  // namespace

std::optional<std::filesystem::path> dataHome() {
  if (auto folder = folderFrom("XDG_DATA_HOME")) return folder;
  const auto home = folderFrom("HOME");
  if (!home) return std::nullopt;
  return *home / ".local" / "share";
}

}  // namespace kivo::linux_platform
