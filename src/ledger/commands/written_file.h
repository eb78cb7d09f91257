// Writes the files that the user names to a command of kivo-ledger.
#pragma once

#include <filesystem>
#include <string_view>

namespace kivo::ledger {

/// As `writePrivateFile`. The sentence of the Failure names `path`.
void writeFile(const std::filesystem::path& path, std::string_view text);

}  // namespace kivo::ledger
