// The usual place of the report, and opening it. Does not write it.
#pragma once

#include <filesystem>
#include <optional>

namespace kivo::ledger::ReportFile {

/// Returns the path of report.html in the runtime folder, which is in memory and is removed at the
/// end of the session; nullopt without a runtime folder. Creates its folder for the user only.
/// Throws Failure when that folder is not private, as `openPrivateFolder` does.
std::optional<std::filesystem::path> usualPlace();

/// Opens the report at `path` with xdg-open, as found in PATH, and waits for it for a few seconds.
/// Throws Failure when that failed.
void open(const std::filesystem::path& path);

}  // namespace kivo::ledger::ReportFile
