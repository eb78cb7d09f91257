#include "platform/linux/store/settings_file.h"

#include <cerrno>
#include <chrono>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"
#include "platform/linux/store/database_folder.h"
#include "platform/linux/store/private_file.h"

namespace kivo::linux_platform {
namespace {

[[noreturn]] void failToRead() { throw Failure("it cannot be read"); }

// Returns the content of the file. Throws when it is too long as well.
std::string bytesOf(int file) {
  std::string bytes(longestSettings + 1, '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failToRead();
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  if (length > longestSettings) failToRead();
  bytes.resize(length);
  return bytes;
}

// The file decides whose messages are read, and how, so no other user may change it.
void requireOwn(const struct stat& file) {
  if (file.st_uid != geteuid() && file.st_uid != 0) throw Failure("it belongs to another user");
  if ((file.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    throw Failure("other users may change it; take that right from them with chmod go-w");
  }
}

// Creates the folders above `path` and returns the file itself, behind symbolic links; nullopt when
// that is not possible.
std::optional<std::filesystem::path> realPath(const std::filesystem::path& path) {
  std::error_code failure;
  std::filesystem::create_directories(path.parent_path(), failure);
  std::filesystem::path real = std::filesystem::weakly_canonical(path, failure);
  if (failure) return std::nullopt;
  return real;
}

int openFolderOf(const std::filesystem::path& path) {
  const auto real = realPath(path);
  return real ? open(real->parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
}

}  // namespace

SettingsFile readSettingsFile(const std::filesystem::path& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.number() < 0 && (errno == ENOENT || errno == ENOTDIR)) return {};
  struct stat found {};
  if (file.number() < 0 || fstat(file.number(), &found) != 0 || !S_ISREG(found.st_mode)) {
    failToRead();
  }
  requireOwn(found);
  const auto changed = platform::Moment(std::chrono::seconds(found.st_mtim.tv_sec) +
                                        std::chrono::microseconds(found.st_mtim.tv_nsec / 1000));
  return {.text = bytesOf(file.number()), .changed = changed};
}

SettingsLock::SettingsLock(const std::filesystem::path& path) : folder_(openFolderOf(path)) {
  while (folder_.number() >= 0 && flock(folder_.number(), LOCK_EX) != 0 && errno == EINTR) {
  }
}

void replaceSettingsFile(const std::filesystem::path& path, const std::string& text) {
  const Failure failure("it cannot be written");
  const auto real = realPath(path);
  if (!real) throw failure;
  syncFoldersAbove(real->parent_path());  // which may be new
  try {
    writePrivateFile(*real, text);
  } catch (const Failure&) {
    throw failure;
  }
}

}  // namespace kivo::linux_platform
