#include "platform/linux/store/settings_file.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

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

// Whoever can change the file decides whose messages are read, and how.
std::optional<std::string> objectionTo(const struct stat& file) {
  if (file.st_uid != geteuid() && file.st_uid != 0) return "it belongs to another user";
  if ((file.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    return "other users may change it; take that right from them with chmod go-w";
  }
  return std::nullopt;
}

// Creates the folders above `path` and returns the file itself, behind symbolic links; an empty
// path on failure.
std::filesystem::path realPath(const std::filesystem::path& path) {
  std::error_code failure;
  std::filesystem::create_directories(path.parent_path(), failure);
  const std::filesystem::path real = std::filesystem::weakly_canonical(path, failure);
  return failure ? std::filesystem::path() : real;
}

}  // namespace

SettingsFile readSettingsFile(const std::filesystem::path& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.number() < 0 && (errno == ENOENT || errno == ENOTDIR)) return {};
  struct stat found {};
  if (file.number() < 0 || fstat(file.number(), &found) != 0 || !S_ISREG(found.st_mode)) {
    return {.error = "it cannot be read"};
  }
  const auto changed = platform::Moment(std::chrono::seconds(found.st_mtim.tv_sec) +
                                        std::chrono::microseconds(found.st_mtim.tv_nsec / 1000));
  if (auto error = objectionTo(found)) return {.changed = changed, .error = std::move(error)};
  auto bytes = bytesOf(file.number());
  if (!bytes) return {.changed = changed, .error = "it cannot be read"};
  return {.text = *std::move(bytes), .changed = changed};
}

SettingsLock::SettingsLock(const std::filesystem::path& path)
    : folder_(open(realPath(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  while (folder_.number() >= 0 && flock(folder_.number(), LOCK_EX) != 0 && errno == EINTR) {
  }
}

bool replaceSettingsFile(const std::filesystem::path& path, const std::string& text) {
  const std::filesystem::path real = realPath(path);
  if (real.empty()) return false;
  syncFoldersAbove(real.parent_path());  // which may be new
  return !writePrivateFile(real, text);
}

}  // namespace kivo::linux_platform
