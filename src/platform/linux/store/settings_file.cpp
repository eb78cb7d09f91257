#include "platform/linux/store/settings_file.h"

#include <cerrno>
#include <chrono>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/process/descriptor.h"
#include "platform/linux/store/database_folder.h"
#include "platform/linux/store/private_file.h"

namespace kivo::linux_platform {
namespace {

// Returns the content of the file; nullopt when it is too long or cannot be read.
std::optional<std::string> bytesOf(int file) {
  std::string bytes(longestSettings + 1, '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  if (length > longestSettings) return std::nullopt;
  bytes.resize(length);
  return bytes;
}

}  // namespace

SettingsFile readSettingsFile(const std::filesystem::path& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.number() < 0 && (errno == ENOENT || errno == ENOTDIR)) return {.text = ""};
  struct stat found {};
  const bool isFile =
      file.number() >= 0 && fstat(file.number(), &found) == 0 && S_ISREG(found.st_mode);
  return {.text = isFile ? bytesOf(file.number()) : std::nullopt,
          .changed = platform::Moment(std::chrono::seconds(found.st_mtim.tv_sec) +
                                      std::chrono::microseconds(found.st_mtim.tv_nsec / 1000))};
}

bool replaceSettingsFile(const std::filesystem::path& path, const std::string& text) {
  std::error_code failure;
  std::filesystem::create_directories(path.parent_path(), failure);
  const std::filesystem::path real = std::filesystem::weakly_canonical(path, failure);
  if (failure) return false;
  syncFoldersAbove(real.parent_path());  // which may be new
  return !writePrivateFile(real, text);
}

}  // namespace kivo::linux_platform
