// The folder in which the files of a suite lie, and who may do what with them. Reads no file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {

/// A folder of this user's own, held open. Nothing in it is reached through a symbolic link.
class SuiteFolder {
 public:
  /// The suite's folder in `dataHome`, made when there is none, for its owner only. Throws
  /// OpeningFailure when it cannot be made or made private, is a symbolic link or another user's.
  explicit SuiteFolder(std::string_view suiteName);

  /// Where the database lies.
  [[nodiscard]] std::filesystem::path file() const;
  /// Makes an empty file for the database unless there is one. Throws OpeningFailure when it cannot
  /// be made or is certainly no database.
  void makeFile() const;
  /// Takes away what others may do with the database and with the files that SQLite keeps beside
  /// it. Throws OpeningFailure when that cannot be done or one is anything but a plain file.
  void makeAllPrivate() const;

 private:
  void makePrivate(const std::string& name) const;

  std::filesystem::path path_;
  Descriptor folder_;
};

}  // namespace kivo::linux_platform
