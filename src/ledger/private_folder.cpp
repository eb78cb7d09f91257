#include "ledger/private_folder.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::ledger {

linux_platform::Descriptor openPrivateFolder(const std::filesystem::path& folder,
                                             std::string_view advice) {
  const auto refused = [&](const std::string& why) {
    return linux_platform::Failure("cannot use the folder " + folder.string() + ": " + why + "; " +
                                   std::string(advice));
  };
  const auto text = [](int error) { return std::generic_category().message(error); };
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  linux_platform::Descriptor opened(
      open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (opened.number() < 0) {
    const int error = errno;
    const bool isLink = std::filesystem::is_symlink(folder, ignored);
    throw refused(isLink ? "it is a symbolic link" : text(error));
  }
  struct stat found {};
  if (fstat(opened.number(), &found) != 0) throw refused(text(errno));
  if (found.st_uid != geteuid() && found.st_uid != 0) throw refused("it belongs to another user");
  const bool sticky = (found.st_mode & S_ISVTX) != 0;
  if ((found.st_mode & 0022) != 0 && !sticky) throw refused("other users can write to it");
  return opened;
}

}  // namespace kivo::ledger
