// Builds and prints the reason why a database cannot be opened.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {

/// A database cannot be opened. `what` names the file or folder and says what to do about it, in
/// one line without stored data. `error` is an errno.
class OpeningFailure : public Failure {
 public:
  using Path = std::filesystem::path;

  /// Neither XDG_DATA_HOME nor HOME is an absolute path.
  static OpeningFailure noHome();
  /// `suiteName` is empty, ".", "..", or contains a slash or a NUL.
  static OpeningFailure noFolderName(std::string_view suiteName);
  static OpeningFailure notMade(const Path& path, int error);
  static OpeningFailure notOpened(const Path& path, int error);
  /// Other users have access to the file or folder, and that cannot be changed.
  static OpeningFailure notMadePrivate(const Path& path, int error);
  static OpeningFailure isLink(const Path& path);
  static OpeningFailure isNotAFolder(const Path& path);
  static OpeningFailure isNotARegularFile(const Path& path);
  static OpeningFailure isOfAnotherUser(const Path& path);
  static OpeningFailure isOfNewerVersion(const Path& path, std::int64_t version);
  static OpeningFailure isOfAnotherProgram(const Path& path);
  static OpeningFailure isNotADatabase(const Path& path);
  static OpeningFailure isDamaged(const Path& path);
  /// For SQLite's result `code` when it opened or read the file. `error` is 0 when SQLite reports
  /// none.
  static OpeningFailure ofDatabase(const Path& path, int code, int error);

 private:
  explicit OpeningFailure(const std::string& reason);
};

/// Prints `failure` as one line on standard error, after the program's name. Does not print the
/// same line twice in a row, unless `tellOpened` was called in between. Thread-safe.
void tellNotOpened(const Failure& failure);
/// Records that a database was opened. Prints nothing. Thread-safe.
void tellOpened();

}  // namespace kivo::linux_platform
