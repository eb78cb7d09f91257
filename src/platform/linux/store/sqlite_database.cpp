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

constexpr std::chrono::milliseconds patience(patienceInMilliseconds);
constexpr auto retryPause = 2ms;

constexpr const char* switchToWal = "PRAGMA journal_mode = WAL";

// Durable commits; deleted bytes overwritten; no text in a temporary file.
constexpr const char* settings =
    "PRAGMA synchronous = FULL; PRAGMA secure_delete = ON; PRAGMA temp_store = MEMORY";

// In pages of 4 KiB. The first process that opens the database reads the WAL once, an eighth of a
// millisecond for this length; a checkpoint takes three syncs.
constexpr int longestWal = 64;

// In this process.
std::atomic<int> openDatabases = 0;

int queryInteger(sqlite3* database, const char* sql, std::int64_t& value) {
  Statement query(database, sql);
  if (query.step()) {
    value = query.integer(0);
    return SQLITE_OK;
  }
  return query.code() == SQLITE_OK ? SQLITE_ERROR : query.code();
}

// Before anything else is asked of SQLite: no memory for 20 pages as soon as one is read, and no
// count of all memory.
void configureOnce() {
  [[maybe_unused]] static const bool done =
      sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0) == SQLITE_OK &&
      sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

// Called after each commit. Checkpoints a long WAL as far as no other process reads from it, and
// waits for none.
int checkpointLongWal(void* length, sqlite3* database, const char*, int pages) {
  *static_cast<int*>(length) = pages;
  if (pages < longestWal) return SQLITE_OK;
  sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
  return SQLITE_OK;
}

enum class Owner { nobody, olderVersion, us, newerVersion, others };

// Who has filled the database, and in which version of its form. To be called within a transaction,
// since another process may be filling it.
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
  if (objects == 0) owner = Owner::nobody;
  return code;
}

int look(sqlite3* database, const DatabaseForm& form, Owner& owner, std::int64_t& version) {
  Transaction transaction(database, "BEGIN");
  if (transaction.code() != SQLITE_OK) return transaction.code();
  const int code = identify(database, form, owner, version);
  return code == SQLITE_OK ? transaction.commit() : code;
}

bool isToBeFilled(Owner owner) { return owner == Owner::nobody || owner == Owner::olderVersion; }

// Brings an empty or older database to the current version, unless another process was faster.
int fill(sqlite3* database, const DatabaseForm& form) {
  // Answers "locked" at once when several processes do it, whatever the patience.
  if (const int code = execute(database, switchToWal); code != SQLITE_OK) return code;
  Transaction transaction(database);
  if (transaction.code() != SQLITE_OK) return transaction.code();
  Owner owner = Owner::others;
  std::int64_t version = 0;
  int code = identify(database, form, owner, version);
  if (code == SQLITE_OK && isToBeFilled(owner)) {
    std::string steps;
    for (const char* const next : form.versions.subspan(static_cast<std::size_t>(version))) {
      steps += std::string(next) + ";";
    }
    steps += "PRAGMA application_id = " + std::to_string(form.applicationId) +
             ";PRAGMA user_version = " + std::to_string(form.versions.size());
    code = execute(database, steps.c_str());
  }
  return code == SQLITE_OK ? transaction.commit() : code;
}

// Brings an opened database to where values can be read and written, touching no foreign one.
// SQLITE_BUSY means that all of it may be tried again. Throws OpeningFailure for a foreign one.
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

int establishPatiently(sqlite3* database, const DatabaseForm& form, const DatabaseFolder& folder) {
  const auto end = std::chrono::steady_clock::now() + patience;
  int code = establish(database, form, folder);
  while (code == SQLITE_BUSY && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(retryPause);
    code = establish(database, form, folder);
  }
  return code;
}

// To be called before anything is read from the file. The last handle to close would checkpoint the
// WAL and remove it, and the next run would create it again: more syncs than the run has commits.
// Where many runs overlap in one process, the page cache would be four fifths of a handle's memory;
// a run that is alone is 5 % faster with it.
void configure(Database& database) {
  database.get_deleter().walLength = std::make_unique<int>(0);
  sqlite3_busy_timeout(database.get(), patienceInMilliseconds);
  if (++openDatabases > 1) execute(database.get(), "PRAGMA cache_size = 0");
  sqlite3_db_config(database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_hook(database.get(), checkpointLongWal, database.get_deleter().walLength.get());
}

// Throws OpeningFailure.
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
    code = establishPatiently(opened, form, folder);
  }
  if (code != SQLITE_OK) {
    throw OpeningFailure::ofDatabase(folder.file(), code, sqlite3_system_errno(opened));
  }
  folder.makeAllPrivate();
  eraseIfOwed(opened);
  return database;
}

}  // namespace

// Which frames of the WAL are checkpointed is known to its index alone, which is lost with the last
// process: the next run would find the WAL as long as it was, and checkpoint it again.
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

Database openDatabase(const DatabaseForm& form) {
  try {
    Database database = open(form);
    tellOpened();
    return database;
  } catch (const OpeningFailure& failure) {
    tellNotOpened(failure);
    return nullptr;
  }
}

}  // namespace kivo::linux_platform
