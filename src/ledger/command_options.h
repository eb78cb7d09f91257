// The values given to a command of kivo-ledger, read and checked. Touches no book.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ledger/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// What was given for `name`, made valid UTF-8; absent when nothing was.
std::optional<std::string> given(const linux_platform::GivenParameters& parameters,
                                 const char* name);

/// Prints one line on standard error: what was given for `name` is wrong, as it has to be `form`.
/// Returns the exit status for bad usage.
int failFor(const char* name, const std::string& value, const std::string& form);

/// The options --month, --from, --to, --category and --search.
std::vector<linux_platform::CommandParameter> filterOptions();

/// Reads `filterOptions` into `filter`, the days of --month and those between --from and --to being
/// the ones that both hold. Returns 0, or as `failFor` when one does not fit.
int readFilter(const linux_platform::GivenParameters& parameters, EntryFilter& filter);

}  // namespace kivo::ledger
