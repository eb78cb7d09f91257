#include "platform/linux/store/database_folder.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/store/opening_failure.h"
#include "platform/linux/store/sqlite_database.h"

namespace kivo::linux_platform {
namespace {

bool isFolderName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// The folder's path. Symbolic links above the folder are followed.
std::filesystem::path pathOf(std::string_view name) {
  if (!isFolderName(name)) throw OpeningFailure::noFolderName(name);
  const auto home = dataHome();
  if (!home) throw OpeningFailure::noHome();
  std::error_code notMade;
  std::filesystem::create_directories(*home, notMade);
  std::error_code notFound;
  const std::filesystem::path realHome = std::filesystem::canonical(*home, notFound);
  if (notFound && notMade) throw OpeningFailure::notMade(*home, notMade.value());
  if (notFound) throw OpeningFailure::notOpened(*home, notFound.value());
  return realHome / name;
}

[[noreturn]] void throwWhyNoFolder(const std::filesystem::path& path, int notMade, int notOpened) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) throw OpeningFailure::notMade(path, notMade);
  if (S_ISLNK(found.st_mode)) throw OpeningFailure::isLink(path);
  if (!S_ISDIR(found.st_mode)) throw OpeningFailure::isNotAFolder(path);
  throw OpeningFailure::notOpened(path, notOpened);
}

// Opens the folder, and creates it when it is missing. Follows no symbolic link.
int openFolder(const std::filesystem::path& path) {
  const int notMade = mkdir(path.c_str(), 0700) == 0 ? 0 : errno;
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder < 0) throwWhyNoFolder(path, notMade, errno);
  return folder;
}

}  // namespace

void syncFolder(const std::filesystem::path& folder) {
  const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.number() >= 0) fsync(opened.number());
}

void syncFoldersAbove(std::filesystem::path path) {
  while (path.has_relative_path()) {
    path = path.parent_path();
    syncFolder(path);
  }
}

DatabaseFolder::DatabaseFolder(std::string_view name, std::string fileName)
    : path_(pathOf(name)), fileName_(std::move(fileName)), folder_(openFolder(path_)) {
  struct stat found {};
  if (fstat(folder_.number(), &found) != 0) throw OpeningFailure::notOpened(path_, errno);
  if (found.st_uid != geteuid()) throw OpeningFailure::isOfAnotherUser(path_);
  const bool forOthers = (found.st_mode & 0077) != 0;
  if (forOthers && fchmod(folder_.number(), found.st_mode & 0700) != 0) {
    throw OpeningFailure::notMadePrivate(path_, errno);
  }
}

std::filesystem::path DatabaseFolder::file() const { return path_ / fileName_; }

// Does not open the file: closing a second descriptor of a database would drop the locks that
// another handle of this process holds on it. SQLite takes a file of one byte for an empty one and
// would overwrite the byte, which is not ours.
void DatabaseFolder::makeFile() const {
  if (mknodat(folder_.number(), fileName_.c_str(), S_IFREG | 0600, 0) != 0 && errno != EEXIST) {
    throw OpeningFailure::notMade(file(), errno);
  }
  struct stat found {};
  if (fstatat(folder_.number(), fileName_.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
    throw OpeningFailure::notOpened(file(), errno);
  }
  if (S_ISREG(found.st_mode) && found.st_size == 1) throw OpeningFailure::isNotADatabase(file());
  if (found.st_size == 0) syncFoldersAbove(path_);
}

void DatabaseFolder::makeAllPrivate() const {
  for (const char* const suffix : {"", "-wal", "-shm", "-journal", erasureNote}) {
    makePrivate(fileName_ + suffix);
  }
}

// A missing file is fine: SQLite creates and removes those beside the database.
void DatabaseFolder::makePrivate(const std::string& name) const {
  struct stat found {};
  if (fstatat(folder_.number(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return;
    throw OpeningFailure::notOpened(path_ / name, errno);
  }
  if (S_ISLNK(found.st_mode)) throw OpeningFailure::isLink(path_ / name);
  if (!S_ISREG(found.st_mode)) throw OpeningFailure::isNotARegularFile(path_ / name);
  if ((found.st_mode & 0077) == 0) return;
  if (fchmodat(folder_.number(), name.c_str(), found.st_mode & 0700, AT_SYMLINK_NOFOLLOW) != 0 &&
      errno != ENOENT) {
    throw OpeningFailure::notMadePrivate(path_ / name, errno);
  }
}

}  // namespace kivo::linux_platform
