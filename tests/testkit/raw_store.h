// The shared store's file as any other program sees it, through SQL. Knows no rule of the store.
#pragma once

#include <filesystem>
#include <string>

namespace kivo::testkit {

/// A database file opened on its own, made when there is none. Throws std::runtime_error with
/// SQLite's words when a statement fails. Waits for nobody.
class RawStore {
 public:
  explicit RawStore(const std::filesystem::path& file);
  ~RawStore();
  RawStore(const RawStore&) = delete;
  RawStore& operator=(const RawStore&) = delete;

  /// Runs the statements of `sql`; the answer is all rows of all of them, columns separated by "|",
  /// each row ended by a line feed.
  std::string run(const std::string& sql);

 private:
  void* database_ = nullptr;
};

}  // namespace kivo::testkit
