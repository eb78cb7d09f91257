// Builds and prints the reason why a database cannot be opened.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace kivo::linux_platform {

/// A reason in one line that names the file or folder and says what to do about it. Holds nothing
/// that is stored. Thrown and caught while a database is opened. `error` is an errno.
class OpeningFailure : public std::runtime_error {
 public:
  using Path = std::filesystem::path;

  /// The environment does not say where data is kept.
  static OpeningFailure noHome();
  static OpeningFailure noFolderName(std::string_view suiteName);
  static OpeningFailure notMade(const Path& path, int error);
  static OpeningFailure notOpened(const Path& path, int error);
  /// Other users keep access to the file or folder.
  static OpeningFailure notMadePrivate(const Path& path, int error);
  static OpeningFailure isLink(const Path& path);
  static OpeningFailure isNotAFolder(const Path& path);
  static OpeningFailure isNotARegularFile(const Path& path);
  static OpeningFailure isOfAnotherUser(const Path& path);
  static OpeningFailure isOfNewerVersion(const Path& path, std::int64_t version);
  static OpeningFailure isOfAnotherProgram(const Path& path);
  static OpeningFailure isNotADatabase(const Path& path);
  static OpeningFailure isDamaged(const Path& path);
  /// For the result `code` of SQLite when it opened or read the file.
  static OpeningFailure ofDatabase(const Path& path, int code, int error);

 private:
  using std::runtime_error::runtime_error;
};

/// Prints `failure` as one line on standard error, after the program's name. The same line is not
/// printed twice in a row, unless `tellOpened` was called in between. Thread-safe.
void tellNotOpened(const OpeningFailure& failure);
/// Notes that a database was opened; prints nothing. Thread-safe.
void tellOpened();

}  // namespace kivo::linux_platform
