// Creates the folder and the file of a database and keeps them private. Does not open the database.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {

/// Calls fsync on a folder, which makes its entries durable. Ignores errors: some file systems do
/// not support it.
void syncFolder(const std::filesystem::path& folder);
/// Calls `syncFolder` for each folder above `path`. All of them: another run may have created some
/// and been killed before it synced them.
void syncFoldersAbove(std::filesystem::path path);

/// An open folder of a database, which is not a symbolic link.
class DatabaseFolder {
 public:
  /// Opens the folder `name` in `dataHome`, and creates it (0700) when it is missing; the database
  /// in it is called `fileName`. Removes the permissions of other users from the folder. Throws
  /// OpeningFailure when it cannot be created, opened or made private, is a symbolic link, or
  /// belongs to another user.
  DatabaseFolder(std::string_view name, std::string fileName);

  /// Returns the path of the database.
  [[nodiscard]] std::filesystem::path file() const;
  /// Creates an empty file (0600) for the database when it is missing. While the file is empty,
  /// syncs the folders above it, which may be new too. Throws OpeningFailure when the file cannot
  /// be created, or is one byte long and so no database.
  void makeFile() const;
  /// Removes the permissions of other users from the database, from the files that SQLite keeps
  /// beside it, and from the note of `oweErasure`. Throws OpeningFailure when that fails or one of
  /// them is not a regular file.
  void makeAllPrivate() const;

 private:
  void makePrivate(const std::string& name) const;

  std::filesystem::path path_;
  std::string fileName_;
  Descriptor folder_;
};

}  // namespace kivo::linux_platform
