#include "platform/linux/store/opening_failure.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "platform/linux/foundation/safe_text.h"

namespace kivo::linux_platform {
namespace {

constexpr const char* startOver = "; move it away to start with an empty store";

// A path comes from the environment; whatever it holds, the reason stays one line.
std::string named(const std::filesystem::path& path) { return escapedControls(path.string()); }

std::string because(int error) {
  std::string reason = ": " + std::generic_category().message(error);
  if (error != EACCES && error != EPERM) return reason;
  return reason + "; change its permissions so that you can read and write it";
}

// Returns the line that was printed last; empty when a database has been opened since.
std::string exchangeLastLine(std::string line) {
  static std::mutex mutex;
  static std::string lastLine;
  const std::lock_guard lock(mutex);
  return std::exchange(lastLine, std::move(line));
}

}  // namespace

OpeningFailure::OpeningFailure(const std::string& reason)
    : Failure("cannot open the store: " + reason) {}

OpeningFailure OpeningFailure::noHome() {
  return OpeningFailure("neither XDG_DATA_HOME nor HOME is an absolute path; set HOME");
}

OpeningFailure OpeningFailure::noFolderName(std::string_view suiteName) {
  return OpeningFailure("\"" + escapedControls(suiteName) + "\" is not the name of a folder");
}

OpeningFailure OpeningFailure::notMade(const Path& path, int error) {
  return OpeningFailure(named(path) + " cannot be created" + because(error));
}

OpeningFailure OpeningFailure::notOpened(const Path& path, int error) {
  return OpeningFailure(named(path) + " cannot be opened" + because(error));
}

OpeningFailure OpeningFailure::notMadePrivate(const Path& path, int error) {
  return OpeningFailure(named(path) +
                        " is open to other users and its permissions cannot be changed" +
                        because(error));
}

OpeningFailure OpeningFailure::isLink(const Path& path) {
  return OpeningFailure(
      named(path) +
      " is a symbolic link, which is not followed; replace it with the file or folder itself");
}

OpeningFailure OpeningFailure::isNotAFolder(const Path& path) {
  return OpeningFailure(named(path) + " is not a folder" + startOver);
}

OpeningFailure OpeningFailure::isNotARegularFile(const Path& path) {
  return OpeningFailure(named(path) + " is not a regular file" + startOver);
}

OpeningFailure OpeningFailure::isOfAnotherUser(const Path& path) {
  return OpeningFailure(named(path) + " belongs to another user" + startOver);
}

OpeningFailure OpeningFailure::isOfNewerVersion(const Path& path, std::int64_t version) {
  return OpeningFailure(named(path) + " was written by a newer version of Kivo (file format " +
                        std::to_string(version) + "); update Kivo");
}

OpeningFailure OpeningFailure::isOfAnotherProgram(const Path& path) {
  return OpeningFailure(named(path) + " is a database of another program" + startOver);
}

OpeningFailure OpeningFailure::isNotADatabase(const Path& path) {
  return OpeningFailure(named(path) + " is not a database" + startOver);
}

OpeningFailure OpeningFailure::isDamaged(const Path& path) {
  return OpeningFailure(named(path) + " is damaged; restore a copy" +
                        ", or move it away to start with an empty store");
}

OpeningFailure OpeningFailure::ofDatabase(const Path& path, int code, int error) {
  switch (code & 0xff) {  // the primary result code
    case SQLITE_NOTADB:
      return isNotADatabase(path);
    case SQLITE_CORRUPT:
      return isDamaged(path);
    case SQLITE_BUSY:
      return OpeningFailure(named(path) + " is locked by another program; stop it and try again");
    default:
      break;
  }
  if (error != 0) return notOpened(path, error);
  return OpeningFailure(named(path) + " cannot be opened: " + sqlite3_errstr(code));
}

void tellNotOpened(const Failure& failure) {
  const std::string line =
      program_invocation_short_name + (": " + std::string(failure.what())) + "\n";
  if (exchangeLastLine(line) != line) std::fputs(line.c_str(), stderr);
}

void tellOpened() { exchangeLastLine({}); }

}  // namespace kivo::linux_platform
