#include "platform/linux/store/write_ahead_log.h"

#include <sqlite3.h>

namespace kivo::linux_platform {
namespace {

sqlite3_file* walOf(sqlite3* database) {
  sqlite3_file* wal = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_JOURNAL_POINTER, &wal);
  return wal != nullptr && wal->pMethods != nullptr ? wal : nullptr;
}

}  // namespace

bool truncateWal(sqlite3* database) {
  const int code =
      sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  sqlite3_file* const wal = walOf(database);
  return code == SQLITE_OK && wal != nullptr &&
         wal->pMethods->xSync(wal, SQLITE_SYNC_NORMAL) == SQLITE_OK;
}

bool isWalEmpty(sqlite3* database) {
  sqlite3_file* const wal = walOf(database);
  sqlite3_int64 size = 0;
  return wal != nullptr && wal->pMethods->xFileSize(wal, &size) == SQLITE_OK && size == 0;
}

}  // namespace kivo::linux_platform
