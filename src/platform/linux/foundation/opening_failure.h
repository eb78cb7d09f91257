// Why a suite cannot be opened, in words for a person, and where they are said.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace kivo::linux_platform {

/// A reason as one line that names the file or folder and, where there is something to do, what.
/// Holds nothing that is stored. Caught where the suite is opened. `error` is an errno.
class OpeningFailure : public std::runtime_error {
 public:
  using Path = std::filesystem::path;

  /// No variable of the environment says where data lies.
  static OpeningFailure noHome();
  static OpeningFailure noFolderName(std::string_view suiteName);
  static OpeningFailure notMade(const Path& path, int error);
  static OpeningFailure notOpened(const Path& path, int error);
  /// Others keep what they may do with the file or folder.
  static OpeningFailure notMadePrivate(const Path& path, int error);
  static OpeningFailure isLink(const Path& path);
  static OpeningFailure isNoFolder(const Path& path);
  static OpeningFailure isNoPlainFile(const Path& path);
  static OpeningFailure isOfAnotherUser(const Path& path);
  static OpeningFailure isOfNewerVersion(const Path& path, std::int64_t version);
  static OpeningFailure isOfAnotherProgram(const Path& path);
  static OpeningFailure isNoDatabase(const Path& path);
  static OpeningFailure isDamaged(const Path& path);
  /// What SQLite answered with `code` when it opened or read the file.
  static OpeningFailure ofDatabase(const Path& path, int code, int error);

 private:
  using std::runtime_error::runtime_error;
};

/// Writes `failure` as one line on standard error, after the program's name. A program that tries
/// again and again says the same once, until `tellOpened`. From any thread.
void tellNotOpened(const OpeningFailure& failure);
/// Says nothing, but lets the next failure be said though it is the same as the last.
void tellOpened();

}  // namespace kivo::linux_platform
