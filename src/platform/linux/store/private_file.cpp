#include "platform/linux/store/private_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"
#include "platform/linux/process/descriptor.h"
#include "platform/linux/store/database_folder.h"

namespace kivo::linux_platform {
namespace {

[[noreturn]] void failForSystem() { throw Failure(std::generic_category().message(errno)); }

// Writes all of `text`.
void writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failForSystem();
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

using Filling = std::function<void(int file, const std::filesystem::path& fresh)>;

void putInPlace(const std::filesystem::path& path, const Filling& fill) {
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode)) {
    throw Failure("it is not a plain file");
  }
  std::string fresh = path.string() + ".XXXXXX";
  const Descriptor file(mkostemp(fresh.data(), O_CLOEXEC));  // mode 0600
  if (file.number() < 0) failForSystem();
  try {
    fill(file.number(), fresh);
    if (fsync(file.number()) != 0) failForSystem();
    if (std::rename(fresh.c_str(), path.c_str()) != 0) failForSystem();
  } catch (const Failure&) {
    unlink(fresh.c_str());
    throw;
  }
  syncFolder(path.has_parent_path() ? path.parent_path() : ".");
}

}  // namespace

void writePrivateFile(const std::filesystem::path& path, std::string_view text) {
  putInPlace(path, [text](int file, const std::filesystem::path&) { writeAll(file, text); });
}

void writePrivateFile(const std::filesystem::path& path,
                      const std::function<void(const std::filesystem::path& fresh)>& fill) {
  putInPlace(path, [&fill](int, const std::filesystem::path& fresh) { fill(fresh); });
}

}  // namespace kivo::linux_platform
