// Puts the report where the user alone reads it, and opens it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kivo::ledger::ReportFile {

/// Returns report.html in the runtime folder, which is in memory and goes at the end of the
/// session; nullopt when there is none. Creates the folder, for the user alone, when it is missing.
std::optional<std::filesystem::path> usualPlace();

/// Makes `path` a file with `text`, of mode 0600, by renaming a new file: a reader sees the file of
/// before or this one. Throws std::system_error when that fails, or when `path` is there and not a
/// regular file.
void write(const std::filesystem::path& path, const std::string& text);

/// Opens `path` with xdg-open, as found in PATH, and waits for it for a few seconds. Returns why
/// that failed; empty when the page is open.
std::string open(const std::filesystem::path& path);

}  // namespace kivo::ledger::ReportFile
