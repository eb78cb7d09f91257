// The files of one book of the server. Knows no person.
#pragma once

#include <filesystem>

#include "money/money.h"

namespace kivo::server::BookFolder {

/// Makes an empty book kept in `currency` in `folder`. Throws Failure, or ReportedFailure after one
/// line on standard error.
void fill(const std::filesystem::path& folder, const money::CurrencyCode& currency);

}  // namespace kivo::server::BookFolder
