// The backup of a book: one file that holds the book and the settings beside it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "money/day.h"
#include "platform/linux/store/sqlite_database.h"

namespace kivo::book {

/// The settings that a backup holds beside the book.
struct BackedUpSettings {
  /// The currency's code.
  std::string currency = {};
  /// The bytes of the file of templates and of that of senders; empty when there is no file.
  std::string templates = {};
  std::string senders = {};

  bool operator==(const BackedUpSettings&) const = default;
};

/// The payments in a book or a backup, those in review included.
struct HeldPayments {
  std::int64_t count = 0;
  /// The first and the last day; absent when there are none.
  std::optional<money::Day> first = {};
  std::optional<money::Day> last = {};
};

/// A backup that was read from a file, as a book of the current version. Not thread-safe.
class Backup {
 public:
  /// Reads the file `path`, which stays as it is, into memory. Throws Failure with a sentence that
  /// names `path` when it cannot be read, is no backup, is damaged or of a newer version.
  static Backup read(const std::filesystem::path& path);

  [[nodiscard]] const BackedUpSettings& settings() const { return settings_; }
  [[nodiscard]] HeldPayments payments() const;
  /// The tables of the book.
  [[nodiscard]] sqlite3* database() const { return database_.get(); }

 private:
  Backup(linux_platform::Database database, BackedUpSettings settings);

  linux_platform::Database database_;
  BackedUpSettings settings_;
};

/// Writes a backup of the book `database` to `path` (0600), as `writePrivateFile` does, and returns
/// the payments in it. A file at `path` is replaced if it is a backup or empty. `program` is the
/// version of the program. Throws BookFailure when the book is damaged, and Failure, with the
/// reason alone, when the file cannot be written.
HeldPayments writeBackup(sqlite3* database, const std::filesystem::path& path,
                         const BackedUpSettings& settings, const std::string& program);

/// The tables of a backup beside those of the open book `database`.
class AttachedBackup {
 public:
  /// Throws BookFailure.
  AttachedBackup(sqlite3* database, const Backup& backup);
  ~AttachedBackup();
  AttachedBackup(const AttachedBackup&) = delete;
  AttachedBackup& operator=(const AttachedBackup&) = delete;

  /// Puts the rows of the backup in the place of those of the book, in the transaction of the
  /// caller. Numbers that either has given are not given again. The history of commands is empty
  /// then, and the ignored messages that a command had taken are gone. Throws BookFailure.
  void replaceBook() const;

 private:
  sqlite3* database_;
};

}  // namespace kivo::book
