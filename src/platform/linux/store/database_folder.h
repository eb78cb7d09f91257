// Creates the folder of a database and keeps it and its files private. Reads no file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {

/// Syncs the entries of a folder. Some file systems cannot; that is no error.
void syncFolder(const std::filesystem::path& folder);
/// Syncs the entry of `path` and those of all folders above it, whoever created them: another run
/// may have been killed before it synced them.
void syncFoldersAbove(std::filesystem::path path);

/// The folder of a database, held open. It is not reached through a symbolic link.
class DatabaseFolder {
 public:
  /// Opens the folder `name` in `dataHome`, creating it (0700) when there is none; the database in
  /// it is called `fileName`. Throws OpeningFailure when it cannot be created or made private, is a
  /// symbolic link or another user's.
  DatabaseFolder(std::string_view name, std::string fileName);

  /// The path of the database.
  [[nodiscard]] std::filesystem::path file() const;
  /// Creates an empty file (0600) for the database unless there is one. While it is empty, syncs
  /// the folders above, which may be new too. Throws OpeningFailure when it cannot be created or
  /// cannot be a database.
  void makeFile() const;
  /// Removes the permissions of other users from the database and from the files that SQLite keeps
  /// beside it. Throws OpeningFailure when that fails or one of them is not a regular file.
  void makeAllPrivate() const;

 private:
  void makePrivate(const std::string& name) const;

  std::filesystem::path path_;
  std::string fileName_;
  Descriptor folder_;
};

}  // namespace kivo::linux_platform
