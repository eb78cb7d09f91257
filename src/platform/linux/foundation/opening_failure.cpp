#include "platform/linux/foundation/opening_failure.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "platform/linux/process/terminal_text.h"

namespace kivo::linux_platform {
namespace {

constexpr const char* startOver = "; move it away to begin with an empty store";

// A path comes from the environment; whatever it holds, the reason stays one line.
std::string named(const std::filesystem::path& path) { return escapedControls(path.string()); }

std::string because(int error) {
  std::string reason = ": " + std::generic_category().message(error);
  if (error != EACCES && error != EPERM) return reason;
  return reason + "; give yourself the permission to read and write it";
}

// What was said last; empty when the last suite could be opened.
std::string exchangeLastSaid(std::string line) {
  static std::mutex mutex;
  static std::string lastSaid;
  const std::lock_guard lock(mutex);
  return std::exchange(lastSaid, std::move(line));
}

}  // namespace

OpeningFailure OpeningFailure::noHome() {
  return OpeningFailure("neither XDG_DATA_HOME nor HOME is the full path of a folder; set HOME");
}

OpeningFailure OpeningFailure::noFolderName(std::string_view suiteName) {
  return OpeningFailure("\"" + escapedControls(suiteName) + "\" is not the name of a folder");
}

OpeningFailure OpeningFailure::notMade(const Path& path, int error) {
  return OpeningFailure(named(path) + " cannot be made" + because(error));
}

OpeningFailure OpeningFailure::notOpened(const Path& path, int error) {
  return OpeningFailure(named(path) + " cannot be opened" + because(error));
}

OpeningFailure OpeningFailure::notMadePrivate(const Path& path, int error) {
  return OpeningFailure(named(path) + " is open to other users, which cannot be changed" +
                        because(error));
}

OpeningFailure OpeningFailure::isLink(const Path& path) {
  return OpeningFailure(named(path) +
                        " is a symbolic link, which is not followed; put what it leads to there");
}

OpeningFailure OpeningFailure::isNoFolder(const Path& path) {
  return OpeningFailure(named(path) + " is not a folder" + startOver);
}

OpeningFailure OpeningFailure::isNoPlainFile(const Path& path) {
  return OpeningFailure(named(path) + " is not a plain file" + startOver);
}

OpeningFailure OpeningFailure::isOfAnotherUser(const Path& path) {
  return OpeningFailure(named(path) + " belongs to another user" + startOver);
}

OpeningFailure OpeningFailure::isOfNewerVersion(const Path& path, std::int64_t version) {
  return OpeningFailure(named(path) + " was written by a newer Kivo (version " +
                        std::to_string(version) + " of the file); install that one");
}

OpeningFailure OpeningFailure::isOfAnotherProgram(const Path& path) {
  return OpeningFailure(named(path) + " is a database of another program" + startOver);
}

OpeningFailure OpeningFailure::isNoDatabase(const Path& path) {
  return OpeningFailure(named(path) + " is not a database" + startOver);
}

OpeningFailure OpeningFailure::isDamaged(const Path& path) {
  return OpeningFailure(named(path) +
                        " is damaged; restore a copy, or move it away to begin with " +
                        "an empty store");
}

OpeningFailure OpeningFailure::ofDatabase(const Path& path, int code, int error) {
  switch (code & 0xff) {  // without SQLite's finer distinction
    case SQLITE_NOTADB:
      return isNoDatabase(path);
    case SQLITE_CORRUPT:
      return isDamaged(path);
    case SQLITE_BUSY:
      return OpeningFailure(named(path) + " is locked by another program; end that one");
    default:
      break;
  }
  if (error != 0) return notOpened(path, error);
  return OpeningFailure(named(path) + " cannot be opened: " + sqlite3_errstr(code));
}

void tellNotOpened(const OpeningFailure& failure) {
  const std::string line = program_invocation_short_name +
                           (": cannot open the store: " + std::string(failure.what())) + "\n";
  if (exchangeLastSaid(line) != line) std::fputs(line.c_str(), stderr);
}

void tellOpened() { exchangeLastSaid({}); }

}  // namespace kivo::linux_platform
