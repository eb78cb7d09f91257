#include "platform/linux/store/replaced_text.h"

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/process/descriptor.h"
#include "platform/linux/store/database_folder.h"
#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"
#include "platform/linux/store/write_ahead_log.h"

namespace kivo::linux_platform {
namespace {

std::string noteOf(sqlite3* database) { return fileOf(database).string() + erasureNote; }

// With secure_delete SQLite overwrites deleted bytes, but not the copies that stay in the free
// space of a page when a row moves to another page. Only VACUUM removes those.
bool erase(sqlite3* database) {
  // The checkpoint below syncs, so that the commit of VACUUM need not.
  execute(database, "PRAGMA synchronous = NORMAL");
  const bool vacuumed = execute(database, "VACUUM") == SQLITE_OK;
  execute(database, "PRAGMA synchronous = FULL");
  // Also when VACUUM failed, as on a full disk: most copies are in the WAL.
  const bool truncated = truncateWal(database);
  return vacuumed && truncated;
}

// Takes the write lock, under which other processes create the note: their text is then in the WAL,
// and the note stays. The removal needs no fsync: when a power cut undoes it, the erasure is
// repeated.
void removeNote(sqlite3* database) {
  if (execute(database, "BEGIN IMMEDIATE") != SQLITE_OK) return;
  if (isWalEmpty(database)) unlink(noteOf(database).c_str());
  execute(database, "COMMIT");
}

}  // namespace

void oweErasure(sqlite3* database) {
  const std::filesystem::path path = noteOf(database);
  const Descriptor note(open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
  // Durable before the commit, so that a power cut never leaves the commit without the note.
  if (note.number() >= 0) syncFolder(path.parent_path());
}

void eraseReplacedText(sqlite3* database) {
  sqlite3_busy_timeout(database, 0);
  if (erase(database)) {
    removeNote(database);
  } else {
    oweErasure(database);  // another process may have removed the note with its own text
  }
  sqlite3_busy_timeout(database, busyTimeoutInMilliseconds);
}

void eraseIfOwed(sqlite3* database) {
  struct stat note {};
  if (lstat(noteOf(database).c_str(), &note) == 0) eraseReplacedText(database);
}

}  // namespace kivo::linux_platform
