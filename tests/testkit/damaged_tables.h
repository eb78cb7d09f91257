// A disk that has damaged the tables of a database.
#pragma once

#include <filesystem>
#include <fstream>
#include <ios>
#include <sstream>
#include <string>

#include "testkit/raw_store.h"

namespace kivo::testkit {

/// Overwrites the first page of each table and index in `file`, which no program has open with
/// commits in its WAL. The file can still be opened: the definitions of the tables stay.
inline void damageTables(const std::filesystem::path& file) {
  constexpr std::streamoff pageSize = 4096;
  std::istringstream pages(
      RawStore(file).run("PRAGMA wal_checkpoint(TRUNCATE); "
                         "SELECT rootpage FROM sqlite_master WHERE rootpage > 1"));
  std::string line;
  std::getline(pages, line);  // of the checkpoint
  std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
  while (std::getline(pages, line)) {
    stream.seekp((std::stoll(line) - 1) * pageSize);
    stream << std::string(pageSize, '\xff');
  }
}

}  // namespace kivo::testkit
