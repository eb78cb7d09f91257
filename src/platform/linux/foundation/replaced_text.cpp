#include "platform/linux/foundation/replaced_text.h"

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/suite_database.h"

namespace kivo::linux_platform {
namespace {

std::string noteOf(sqlite3* database) {
  return std::string(sqlite3_db_filename(database, "main")) + erasureNote;
}

// SQLite overwrites what it deletes, but not the copies that it leaves in the free space of a page
// when it moves a row to another one. Only a database that is written anew has none.
bool erase(sqlite3* database) {
  // Made durable by the checkpoint, at once.
  execute(database, "PRAGMA synchronous = NORMAL");
  const bool writtenAnew = execute(database, "VACUUM") == SQLITE_OK;
  execute(database, "PRAGMA synchronous = FULL");
  // Even without, say on a full disk: most copies lie in the log.
  Statement checkpoint;
  const int code = prepare(database, "PRAGMA wal_checkpoint(TRUNCATE)", checkpoint);
  if (code != SQLITE_OK || sqlite3_step(checkpoint.get()) != SQLITE_ROW) return false;
  const bool prevented = sqlite3_column_int(checkpoint.get(), 0) != 0;
  return writtenAnew && !prevented;
}

}  // namespace

void oweErasure(sqlite3* database) {
  const int note =
      open(noteOf(database).c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (note < 0) return;
  close(note);
  // So that it outlives a power failure as the commit does.
  const std::filesystem::path folder = std::filesystem::path(noteOf(database)).parent_path();
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

void eraseReplacedText(sqlite3* database) {
  sqlite3_busy_timeout(database, 0);
  const bool erased = erase(database);
  sqlite3_busy_timeout(database, patienceInMilliseconds);
  if (erased) {
    unlink(noteOf(database).c_str());
  } else {
    oweErasure(database);  // another process may have taken the note away for its own text
  }
}

void eraseIfOwed(sqlite3* database) {
  struct stat note {};
  if (lstat(noteOf(database).c_str(), &note) == 0) eraseReplacedText(database);
}

}  // namespace kivo::linux_platform
