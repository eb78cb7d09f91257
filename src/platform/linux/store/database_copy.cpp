#include "platform/linux/store/database_copy.h"

#include <algorithm>
#include <string>

#include <sqlite3.h>

#include "platform/linux/store/sqlite_statement.h"

namespace kivo::linux_platform {
namespace {

Database opened(const char* name, int flags) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(name, &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  Database owner(database);
  if (code != SQLITE_OK) owner.reset();
  return owner;
}

}  // namespace

Database openInMemory(std::string_view bytes) {
  Database database = opened(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (database == nullptr || bytes.empty()) return database;
  auto* const copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size()));
  if (copy == nullptr) return nullptr;
  std::copy(bytes.begin(), bytes.end(), copy);
  const auto size = static_cast<sqlite3_int64>(bytes.size());
  const int code =  // frees the copy also when it fails
      sqlite3_deserialize(database.get(), "main", copy, size, size,
                          SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
  if (code != SQLITE_OK) database.reset();
  return database;
}

int attachCopy(sqlite3* database, const char* name, sqlite3* source) {
  const std::string attach = std::string("ATTACH ':memory:' AS ") + name;
  if (const int code = execute(database, attach.c_str()); code != SQLITE_OK) return code;
  sqlite3_int64 size = 0;
  unsigned char* const bytes = sqlite3_serialize(source, "main", &size, 0);
  if (bytes == nullptr) return SQLITE_NOMEM;
  // Not read-only: BEGIN IMMEDIATE begins to write to every attached database.
  return sqlite3_deserialize(database, name, bytes, size, size, SQLITE_DESERIALIZE_FREEONCLOSE);
}

int copyInto(const std::filesystem::path& target, sqlite3* source) {
  Statement copying(source, "VACUUM INTO ?");
  copying.bind(target.native()).run();
  return copying.code();
}

Database openUnshared(const std::filesystem::path& path) {
  Database database = opened(path.c_str(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW);
  if (database == nullptr) return nullptr;
  execute(database.get(),
          "PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF; PRAGMA temp_store = MEMORY");
  return database;
}

}  // namespace kivo::linux_platform
