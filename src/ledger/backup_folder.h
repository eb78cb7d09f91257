// The folder of backups: the names of the files in it, and how many are kept.
#pragma once

#include <filesystem>

namespace kivo::ledger::BackupFolder {

/// Returns kivo-backups in `dataHome`, created for the user only. Throws Failure when it cannot be
/// created.
std::filesystem::path usual();

/// Creates `folder`, but not the folders above it, for the user only when it is missing. Throws
/// Failure, with its path, when that fails.
void create(const std::filesystem::path& folder);

/// Returns the path of the daily backup of the current day: kivo-2026-11-22.kivo.
std::filesystem::path ofToday(const std::filesystem::path& folder);

/// Returns a path that does not exist for a backup before a restore:
/// before-restore-2026-11-22-184500.kivo.
std::filesystem::path beforeRestore(const std::filesystem::path& folder);

/// Deletes the daily backups in `folder` but the newest 30 by their names and `kept`. Leaves all
/// files with other names. Ignores errors.
void removeOld(const std::filesystem::path& folder, const std::filesystem::path& kept);

}  // namespace kivo::ledger::BackupFolder
