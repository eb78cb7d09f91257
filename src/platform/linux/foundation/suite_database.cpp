#include "platform/linux/foundation/suite_database.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>

#include <sqlite3.h>
#include <sys/stat.h>

#include "platform/linux/foundation/opening_failure.h"
#include "platform/linux/foundation/replaced_text.h"
#include "platform/linux/foundation/suite_folder.h"

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds patience(patienceInMilliseconds);
constexpr auto retryPause = 2ms;
constexpr std::int64_t applicationId = 0x4B69766F;  // "Kivo" in ASCII
constexpr std::int64_t currentVersion = 1;

constexpr const char* switchToWal = "PRAGMA journal_mode = WAL";

// Durable commits; deleted bytes overwritten; no text in a temporary file.
constexpr const char* settings =
    "PRAGMA synchronous = FULL; PRAGMA secure_delete = ON; PRAGMA temp_store = MEMORY";

// In pages of 4 KiB. Whoever opens the database alone reads the log once, an eighth of a
// millisecond for this much; moving it into the database takes three syncs.
constexpr int longestLog = 64;

// The statements of one transaction that turn an empty database into a suite.
constexpr const char* creation =
    "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT;"
    "PRAGMA application_id = 0x4B69766F;"
    "PRAGMA user_version = 1";

int queryInteger(sqlite3* database, const char* sql, std::int64_t& value) {
  Statement statement;
  if (const int code = prepare(database, sql, statement); code != SQLITE_OK) return code;
  const int code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW) return code == SQLITE_DONE ? SQLITE_ERROR : code;
  value = sqlite3_column_int64(statement.get(), 0);
  return SQLITE_OK;
}

// Before anything else is asked of SQLite: no memory for 20 pages as soon as one is read, and no
// count of all memory.
void configureOnce() {
  [[maybe_unused]] static const bool done =
      sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0) == SQLITE_OK &&
      sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

// The access to a log once it is open: the usual one, but for two syncs too many. One is that of a
// log which holds its own heading alone: nothing rests on that before the first commit, which is
// synced. The other is that of the folder, see below: a log that was emptied keeps a byte, which
// SQLite takes for nothing, and from which a later run knows that the folder has it.
struct LogMethods : sqlite3_io_methods {
  static constexpr sqlite3_int64 headingSize = 32;

  explicit LogMethods(const sqlite3_io_methods& usual) : sqlite3_io_methods(usual) {
    usualSync = usual.xSync;
    usualTruncate = usual.xTruncate;
    xSync = [](sqlite3_file* log, int flags) {
      sqlite3_int64 size = 0;
      const int code = log->pMethods->xFileSize(log, &size);
      return code == SQLITE_OK && size <= headingSize ? SQLITE_OK : usualSync(log, flags);
    };
    xTruncate = [](sqlite3_file* log, sqlite3_int64 size) {
      return usualTruncate(log, std::max<sqlite3_int64>(size, 1));
    };
  }

  inline static int (*usualSync)(sqlite3_file*, int) = nullptr;
  inline static int (*usualTruncate)(sqlite3_file*, sqlite3_int64) = nullptr;
};

// The usual access to files but for logs. One that is there and holds something is opened without
// the permission to make it: SQLite takes one opened with it for new, and syncs its folder with its
// first write, one sync for each run.
sqlite3_vfs* logKeepingAccess() {
  configureOnce();
  static sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
  static sqlite3_vfs access = [] {
    sqlite3_vfs copy = *usual;
    copy.zName = "kivo";
    copy.xOpen = [](sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* got) {
      if ((flags & SQLITE_OPEN_WAL) == 0) return usual->xOpen(usual, name, file, flags, got);
      struct stat found {};
      const bool holdsSomething = stat(name, &found) == 0 && found.st_size > 0;
      const int opening = holdsSomething ? flags & ~SQLITE_OPEN_CREATE : flags;
      const int code = usual->xOpen(usual, name, file, opening, got);
      if (code != SQLITE_OK) return code;
      static const LogMethods methods(*file->pMethods);
      file->pMethods = &methods;
      return SQLITE_OK;
    };
    return copy;
  }();
  static const int registered = sqlite3_vfs_register(&access, 0);
  return registered == SQLITE_OK ? &access : usual;
}

// Called after each commit. Moves a long log into the database as far as nobody reads from it, and
// waits for nobody.
int shortenLog(void* length, sqlite3* database, const char*, int pages) {
  *static_cast<int*>(length) = pages;
  if (pages < longestLog) return SQLITE_OK;
  sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
  return SQLITE_OK;
}

enum class Owner { nobody, us, newerVersion, others };

// Who has filled the database, and in which version of its form. To be called within a transaction,
// since another process may be filling it.
int identify(sqlite3* database, Owner& owner, std::int64_t& version) {
  std::int64_t id = 0;
  int code = queryInteger(database, "PRAGMA application_id", id);
  if (code == SQLITE_OK) code = queryInteger(database, "PRAGMA user_version", version);
  owner = Owner::others;
  if (id == applicationId && version == currentVersion) owner = Owner::us;
  if (id == applicationId && version > currentVersion) owner = Owner::newerVersion;
  if (code != SQLITE_OK || id != 0 || version != 0) return code;

  std::int64_t objects = 0;
  code = queryInteger(database, "SELECT count(*) FROM sqlite_schema", objects);
  if (objects == 0) owner = Owner::nobody;
  return code;
}

// Runs `steps` as one transaction that `begin` starts.
template <typename Steps>
int transaction(sqlite3* database, const char* begin, const Steps& steps) {
  int code = execute(database, begin);
  if (code == SQLITE_OK) code = steps();
  if (code == SQLITE_OK) code = execute(database, "COMMIT");
  if (sqlite3_get_autocommit(database) == 0) execute(database, "ROLLBACK");
  return code;
}

// Fills an empty database, unless another process has been faster.
int create(sqlite3* database) {
  // Answers "locked" at once when several processes do it, whatever the patience.
  if (const int code = execute(database, switchToWal); code != SQLITE_OK) return code;
  return transaction(database, "BEGIN IMMEDIATE", [database] {
    Owner owner = Owner::others;
    std::int64_t version = 0;
    const int code = identify(database, owner, version);
    return code == SQLITE_OK && owner == Owner::nobody ? execute(database, creation) : code;
  });
}

// Brings an opened database to where values can be read and written, touching no foreign one.
// SQLITE_BUSY means that all of it may be tried again. Throws OpeningFailure for a foreign one.
int establish(sqlite3* database, const SuiteFolder& folder) {
  Owner owner = Owner::others;
  std::int64_t version = 0;
  const auto look = [&] { return identify(database, owner, version); };
  int code = transaction(database, "BEGIN", look);
  if (code == SQLITE_OK && owner == Owner::nobody) {
    code = create(database);
    if (code == SQLITE_OK) code = transaction(database, "BEGIN", look);
  }
  if (code != SQLITE_OK) return code;
  if (owner == Owner::newerVersion) throw OpeningFailure::isOfNewerVersion(folder.file(), version);
  if (owner != Owner::us) throw OpeningFailure::isOfAnotherProgram(folder.file());
  // The switch writes nothing to a file that is in this mode already.
  code = execute(database, switchToWal);
  if (code == SQLITE_OK) code = execute(database, settings);
  return code;
}

int establishPatiently(sqlite3* database, const SuiteFolder& folder) {
  const auto end = std::chrono::steady_clock::now() + patience;
  int code = establish(database, folder);
  while (code == SQLITE_BUSY && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(retryPause);
    code = establish(database, folder);
  }
  return code;
}

// Before anything is read from the file. A handle lives for a run, reads each value about once, and
// many runs overlap in one process: the cache of pages would be four fifths of a handle's memory.
// The last to close the database would move the log into it and take away its files, only for the
// next run to make them anew: more syncs than the run itself has commits.
void configure(Database& database) {
  database.get_deleter().logLength = std::make_unique<int>(0);
  sqlite3_busy_timeout(database.get(), patienceInMilliseconds);
  execute(database.get(), "PRAGMA cache_size = 0");
  sqlite3_db_config(database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_hook(database.get(), shortenLog, database.get_deleter().logLength.get());
}

// Throws OpeningFailure.
Database open(const SuiteFolder& folder) {
  folder.makeFile();
  folder.makeAllPrivate();
  sqlite3* opened = nullptr;
  int code = sqlite3_open_v2(folder.file().c_str(), &opened,
                             SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW,
                             logKeepingAccess()->zName);
  Database database(opened);
  if (code == SQLITE_OK) {
    configure(database);
    code = establishPatiently(opened, folder);
  }
  if (code != SQLITE_OK) {
    throw OpeningFailure::ofDatabase(folder.file(), code, sqlite3_system_errno(opened));
  }
  folder.makeAllPrivate();
  eraseIfOwed(opened);
  return database;
}

}  // namespace

// That a log has been moved, and may be written over from its start, is known only until the last
// one closes it: the next run would find it as long as it was, and move it again.
void CloseDatabase::operator()(sqlite3* database) const {
  if (logLength != nullptr && *logLength >= longestLog) {
    sqlite3_busy_timeout(database, 0);
    sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  }
  sqlite3_close(database);
}

void FinalizeStatement::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

int prepare(sqlite3* database, const char* sql, Statement& statement) {
  sqlite3_stmt* prepared = nullptr;
  const int code =
      sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
  statement.reset(prepared);
  return code;
}

int execute(sqlite3* database, const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

Database openSuiteDatabase(std::string_view suiteName) {
  try {
    Database database = open(SuiteFolder(suiteName));
    tellOpened();
    return database;
  } catch (const OpeningFailure& failure) {
    tellNotOpened(failure);
    return nullptr;
  }
}

}  // namespace kivo::linux_platform
