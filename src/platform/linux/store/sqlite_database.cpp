#include "platform/linux/store/sqlite_database.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include <sqlite3.h>

#include "platform/linux/store/database_folder.h"
#include "platform/linux/store/opening_failure.h"
#include "platform/linux/store/replaced_text.h"
#include "platform/linux/store/sqlite_statement.h"
#include "platform/linux/store/write_ahead_log.h"

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds busyTimeout(busyTimeoutInMilliseconds);
constexpr auto retryPause = 2ms;

constexpr const char* switchToWal = "PRAGMA journal_mode = WAL";

// Durable commits; deleted bytes overwritten; no text in a temporary file.
constexpr const char* settings =
    "PRAGMA synchronous = FULL; PRAGMA secure_delete = ON; PRAGMA temp_store = MEMORY";

// In pages of 4 KiB. The first process that opens the database reads all of the WAL, which takes an
// eighth of a millisecond for this length. A checkpoint costs three fsyncs.
constexpr int longestWal = 64;

// The number of open databases in this process.
std::atomic<int> openDatabases = 0;

int queryInteger(sqlite3* database, const char* sql, std::int64_t& value) {
  Statement query(database, sql);
  if (query.step()) {
    value = query.integer(0);
    return SQLITE_OK;
  }
  return query.code() == SQLITE_OK ? SQLITE_ERROR : query.code();
}

// Must precede all other calls of SQLite. Without a page cache of 20 pages that is allocated at the
// first read, and without statistics of the memory in use.
void configureOnce() {
  [[maybe_unused]] static const bool done =
      sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0) == SQLITE_OK &&
      sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

// Called after each commit. Checkpoints a long WAL in PASSIVE mode, which waits for no other
// process and copies only the frames that none of them reads.
int checkpointLongWal(void* length, sqlite3* database, const char*, int pages) {
  *static_cast<int*>(length) = pages;
  if (pages < longestWal) return SQLITE_OK;
  sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
  return SQLITE_OK;
}

// Which program created the tables of a database, if any.
enum class Owner { none, olderVersion, us, newerVersion, others };

// Reads the owner and the version of the tables. Call it in a transaction, since another process
// may be creating them.
int identify(sqlite3* database, const DatabaseForm& form, Owner& owner, std::int64_t& version) {
  std::int64_t id = 0;
  int code = queryInteger(database, "PRAGMA application_id", id);
  if (code == SQLITE_OK) code = queryInteger(database, "PRAGMA user_version", version);
  const auto current = static_cast<std::int64_t>(form.versions.size());
  owner = Owner::others;
  if (id == form.applicationId && version > 0) {
    owner = version < current ? Owner::olderVersion : Owner::us;
    if (version > current) owner = Owner::newerVersion;
  }
  if (code != SQLITE_OK || id != 0 || version != 0) return code;

  std::int64_t objects = 0;
  code = queryInteger(database, "SELECT count(*) FROM sqlite_schema", objects);
  if (objects == 0) owner = Owner::none;
  return code;
}

int look(sqlite3* database, const DatabaseForm& form, Owner& owner, std::int64_t& version) {
  Transaction transaction(database, "BEGIN");
  if (transaction.code() != SQLITE_OK) return transaction.code();
  const int code = identify(database, form, owner, version);
  return code == SQLITE_OK ? transaction.commit() : code;
}

bool isToBeFilled(Owner owner) { return owner == Owner::none || owner == Owner::olderVersion; }

// Creates the tables or upgrades them to the current version, unless another process was faster.
int makeTables(sqlite3* database, const DatabaseForm& form) {
  Transaction transaction(database);
  if (transaction.code() != SQLITE_OK) return transaction.code();
  Owner owner = Owner::others;
  std::int64_t version = 0;
  int code = identify(database, form, owner, version);
  if (code == SQLITE_OK && isToBeFilled(owner)) {
    for (const DatabaseVersion& next : form.versions.subspan(static_cast<std::size_t>(version))) {
      if (code == SQLITE_OK) code = execute(database, next.sql);
      if (code == SQLITE_OK && next.step != nullptr) code = next.step(database);
    }
    const std::string mark = "PRAGMA application_id = " + std::to_string(form.applicationId) +
                             ";PRAGMA user_version = " + std::to_string(form.versions.size());
    if (code == SQLITE_OK) code = execute(database, mark.c_str());
  }
  return code == SQLITE_OK ? transaction.commit() : code;
}

int fill(sqlite3* database, const DatabaseForm& form) {
  // Returns SQLITE_BUSY at once when several processes do it, whatever the busy timeout.
  if (const int code = execute(database, switchToWal); code != SQLITE_OK) return code;
  return makeTables(database, form);
}

// Prepares an opened database for reading and writing. After SQLITE_BUSY it may be called again.
// Throws OpeningFailure for a database of another program or a newer version, which stays
// unchanged.
int establish(sqlite3* database, const DatabaseForm& form, const DatabaseFolder& folder) {
  Owner owner = Owner::others;
  std::int64_t version = 0;
  int code = look(database, form, owner, version);
  if (code == SQLITE_OK && isToBeFilled(owner)) {
    code = fill(database, form);
    if (code == SQLITE_OK) code = look(database, form, owner, version);
  }
  if (code != SQLITE_OK) return code;
  if (owner == Owner::newerVersion) throw OpeningFailure::isOfNewerVersion(folder.file(), version);
  if (owner != Owner::us) throw OpeningFailure::isOfAnotherProgram(folder.file());
  // The switch writes nothing to a file that is in this mode already.
  code = execute(database, switchToWal);
  if (code == SQLITE_OK) code = execute(database, settings);
  return code;
}

int establishWithRetries(sqlite3* database, const DatabaseForm& form,
                         const DatabaseFolder& folder) {
  const auto end = std::chrono::steady_clock::now() + busyTimeout;
  int code = establish(database, form, folder);
  while (code == SQLITE_BUSY && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(retryPause);
    code = establish(database, form, folder);
  }
  return code;
}

// Call it before anything is read from the file. By default the last handle to close checkpoints
// and removes the WAL, and the next run creates it again: more fsyncs than the run has commits.
// A second handle in the process, as in runs that overlap, gets no page cache, which would be four
// fifths of its memory; a run on its own is 5 % faster with the cache.
void configure(Database& database) {
  database.get_deleter().walLength = std::make_unique<int>(0);
  sqlite3_busy_timeout(database.get(), busyTimeoutInMilliseconds);
  if (++openDatabases > 1) execute(database.get(), "PRAGMA cache_size = 0");
  sqlite3_db_config(database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_hook(database.get(), checkpointLongWal, database.get_deleter().walLength.get());
}

Database open(const DatabaseForm& form) {
  const DatabaseFolder folder(form.folder, form.file);
  folder.makeFile();
  folder.makeAllPrivate();
  configureOnce();
  sqlite3* opened = nullptr;
  int code =
      sqlite3_open_v2(folder.file().c_str(), &opened,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW, nullptr);
  Database database(opened);
  if (code == SQLITE_OK) {
    configure(database);
    code = establishWithRetries(opened, form, folder);
  }
  if (code != SQLITE_OK) {
    throw OpeningFailure::ofDatabase(folder.file(), code, sqlite3_system_errno(opened));
  }
  folder.makeAllPrivate();
  eraseIfOwed(opened);
  return database;
}

}  // namespace

// Truncates a long WAL. Only the WAL index records which frames are checkpointed, and it is lost
// when the last process closes the database: the next run would checkpoint the same frames again.
void CloseDatabase::operator()(sqlite3* database) const {
  if (walLength != nullptr) {
    --openDatabases;
    if (*walLength >= longestWal) {
      sqlite3_busy_timeout(database, 0);
      truncateWal(database);
    }
  }
  sqlite3_close(database);
}

int upgradeTables(sqlite3* database, const DatabaseForm& form) {
  return makeTables(database, form);
}

std::filesystem::path fileOf(sqlite3* database) { return sqlite3_db_filename(database, "main"); }

Database openDatabase(const DatabaseForm& form) {
  Database database = open(form);
  tellOpened();
  return database;
}

}  // namespace kivo::linux_platform
