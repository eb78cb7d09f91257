#include "platform/linux/store/private_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/process/descriptor.h"
#include "platform/linux/store/database_folder.h"

namespace kivo::linux_platform {
namespace {

std::string wordsFor(int error) { return std::generic_category().message(error); }

// Writes all of `text` and syncs it; returns 0 or the error's number.
int writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return fsync(file) == 0 ? 0 : errno;
}

}  // namespace

std::optional<std::string> writePrivateFile(const std::filesystem::path& path,
                                            std::string_view text) {
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode)) return "it is not a plain file";
  std::string fresh = path.string() + ".XXXXXX";
  const Descriptor file(mkostemp(fresh.data(), O_CLOEXEC));  // mode 0600
  if (file.number() < 0) return wordsFor(errno);
  int error = writeAll(file.number(), text);
  if (error == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    unlink(fresh.c_str());
    return wordsFor(error);
  }
  syncFolder(path.has_parent_path() ? path.parent_path() : ".");
  return std::nullopt;
}

}  // namespace kivo::linux_platform
