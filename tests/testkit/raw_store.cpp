#include "testkit/raw_store.h"

#include <stdexcept>

#include <sqlite3.h>

namespace kivo::testkit {
namespace {

int addRow(void* answer, int count, char** values, char**) {
  auto& text = *static_cast<std::string*>(answer);
  for (int column = 0; column < count; ++column) {
    if (column > 0) text += '|';
    if (values[column] != nullptr) text += values[column];
  }
  text += '\n';
  return 0;
}

}  // namespace

RawStore::RawStore(const std::filesystem::path& file) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open(file.c_str(), &database);
  database_ = database;
  if (code != SQLITE_OK) {
    sqlite3_close(database);
    throw std::runtime_error("cannot open " + file.string());
  }
}

RawStore::~RawStore() { sqlite3_close(static_cast<sqlite3*>(database_)); }

std::string RawStore::run(const std::string& sql) {
  auto* const database = static_cast<sqlite3*>(database_);
  std::string answer;
  if (sqlite3_exec(database, sql.c_str(), addRow, &answer, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  return answer;
}

}  // namespace kivo::testkit
