#include "ledger/private_folder.h"

#include <cerrno>
#include <optional>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::ledger {
namespace {

// Why the folder `opened` is not private; nullopt when it is.
std::optional<std::string> objectionTo(int opened) {
  struct stat found {};
  if (fstat(opened, &found) != 0) return std::generic_category().message(errno);
  if (found.st_uid != geteuid() && found.st_uid != 0) return "it belongs to another user";
  const bool sticky = (found.st_mode & S_ISVTX) != 0;
  if ((found.st_mode & 0022) != 0 && !sticky) return "other users can write to it";
  return std::nullopt;
}

}  // namespace

linux_platform::Descriptor openPrivateFolder(const std::filesystem::path& folder,
                                             std::string_view advice) {
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  std::optional<std::string> objection = std::generic_category().message(errno);
  if (opened >= 0) objection = objectionTo(opened);
  if (opened < 0 && std::filesystem::is_symlink(folder, ignored)) {
    objection = "it is a symbolic link";
  }
  if (!objection) return linux_platform::Descriptor(opened);
  if (opened >= 0) close(opened);
  throw linux_platform::Failure("cannot use the folder " + folder.string() + ": " + *objection +
                                "; " + std::string(advice));
}

}  // namespace kivo::ledger
