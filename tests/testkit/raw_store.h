// The file of the shared store as any other program sees it, through SQL.
#pragma once

#include <filesystem>
#include <string>

namespace kivo::testkit {

/// A connection to a database file, which is created when it does not exist. Throws
/// std::runtime_error with the message of SQLite when a statement fails. Does not wait for locks.
class RawStore {
 public:
  explicit RawStore(const std::filesystem::path& file);
  ~RawStore();
  RawStore(const RawStore&) = delete;
  RawStore& operator=(const RawStore&) = delete;

  /// Runs the statements of `sql`; returns all rows of all of them, columns separated by "|", each
  /// row ended by a line feed.
  std::string run(const std::string& sql);

 private:
  void* database_ = nullptr;
};

}  // namespace kivo::testkit
