#include "platform/linux/foundation/suite_database.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include <sqlite3.h>

#include "platform/linux/foundation/opening_failure.h"
#include "platform/linux/foundation/replaced_text.h"
#include "platform/linux/foundation/suite_folder.h"
#include "platform/linux/foundation/write_ahead_log.h"

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

// In pages of 4 KiB. The first process that opens the database reads the WAL once, an eighth of a
// millisecond for this length; a checkpoint takes three syncs.
constexpr int longestWal = 64;

// In this process.
std::atomic<int> openDatabases = 0;

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

// Called after each commit. Checkpoints a long WAL as far as no other process reads from it, and
// waits for none.
int checkpointLongWal(void* length, sqlite3* database, const char*, int pages) {
  *static_cast<int*>(length) = pages;
  if (pages < longestWal) return SQLITE_OK;
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
Database open(const SuiteFolder& folder) {
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
