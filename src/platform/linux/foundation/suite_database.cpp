#include "platform/linux/foundation/suite_database.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

#include <sqlite3.h>
#include <sys/stat.h>

#include "platform/linux/foundation/device_folders.h"

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 10s;
constexpr auto retryPause = 2ms;
constexpr std::int64_t applicationId = 0x4B69766F;  // "Kivo" in ASCII
constexpr std::int64_t currentVersion = 1;

constexpr const char* switchToWal = "PRAGMA journal_mode = WAL";

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

bool isFolderName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// Takes away what others may do with the file or folder. True as well when there is none.
bool makePrivate(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return errno == ENOENT;
  return (found.st_mode & 0077) == 0 || chmod(path.c_str(), found.st_mode & 0700) == 0;
}

bool makeFolder(const std::filesystem::path& folder) {
  if (mkdir(folder.c_str(), 0700) != 0 && errno == ENOENT) {
    std::error_code ignored;  // the second attempt tells
    std::filesystem::create_directories(folder.parent_path(), ignored);
    mkdir(folder.c_str(), 0700);
  }
  std::error_code ignored;
  return std::filesystem::is_directory(folder, ignored) && makePrivate(folder);
}

// Makes an empty file unless there is one. Does not open it: closing a second descriptor of a
// database would drop the locks that another handle of this process holds on it. SQLite takes a
// file of one byte for an empty one and would overwrite the byte, which is not ours.
bool makeFile(const std::string& file) {
  if (mknod(file.c_str(), S_IFREG | 0600, 0) != 0 && errno != EEXIST) return false;
  struct stat found {};
  return stat(file.c_str(), &found) == 0 && S_ISREG(found.st_mode) && found.st_size != 1;
}

enum class Owner { nobody, us, others };

// Who has filled the database: nobody yet, this program, or somebody else or a newer version. To be
// called within a transaction, since another process may be filling it.
int identify(sqlite3* database, Owner& owner) {
  std::int64_t id = 0;
  std::int64_t version = 0;
  int code = queryInteger(database, "PRAGMA application_id", id);
  if (code == SQLITE_OK) code = queryInteger(database, "PRAGMA user_version", version);
  owner = id == applicationId && version == currentVersion ? Owner::us : Owner::others;
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
    const int code = identify(database, owner);
    return code == SQLITE_OK && owner == Owner::nobody ? execute(database, creation) : code;
  });
}

// Brings an opened database to where values can be read and written, touching no foreign one.
// SQLITE_BUSY means that all of it may be tried again.
int establish(sqlite3* database) {
  Owner owner = Owner::others;
  const auto look = [database, &owner] { return identify(database, owner); };
  int code = transaction(database, "BEGIN", look);
  if (code == SQLITE_OK && owner == Owner::nobody) {
    code = create(database);
    if (code == SQLITE_OK) code = transaction(database, "BEGIN", look);
  }
  if (code == SQLITE_OK && owner != Owner::us) code = SQLITE_NOTADB;
  // The switch writes nothing to a file that is in this mode already.
  if (code == SQLITE_OK) code = execute(database, switchToWal);
  if (code == SQLITE_OK) code = execute(database, "PRAGMA synchronous = FULL");
  return code;
}

int establishPatiently(sqlite3* database) {
  const auto end = std::chrono::steady_clock::now() + patience;
  int code = establish(database);
  while (code == SQLITE_BUSY && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(retryPause);
    code = establish(database);
  }
  return code;
}

}  // namespace

void CloseDatabase::operator()(sqlite3* database) const { sqlite3_close(database); }

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
  const auto home = dataHome();
  if (!home || !isFolderName(suiteName)) return nullptr;
  const std::filesystem::path folder = *home / suiteName;
  const std::string file = folder / "defaults.sqlite3";
  if (!makeFolder(folder) || !makeFile(file)) return nullptr;

  sqlite3* opened = nullptr;
  const int code =
      sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  Database database(opened);
  if (code != SQLITE_OK) return nullptr;
  sqlite3_busy_timeout(opened, static_cast<int>(std::chrono::milliseconds(patience).count()));
  // A handle lives for a run, reads each value about once, and many runs overlap in one process:
  // the cache of pages would be four fifths of a handle's memory. Before a page is read, since the
  // cache is made at once.
  execute(opened, "PRAGMA cache_size = 0");

  if (establishPatiently(opened) != SQLITE_OK) return nullptr;
  for (const char* const suffix : {"", "-wal", "-shm"}) {
    if (!makePrivate(file + suffix)) return nullptr;
  }
  return database;
}

}  // namespace kivo::linux_platform
