// Reads and checks the values of options of kivo-ledger's commands. Does not open the book.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "book/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the value given for `name`, as valid UTF-8; absent when none was given.
std::optional<std::string> given(const linux_platform::GivenParameters& parameters,
                                 const char* name);

/// Prints one line on standard error: the value given for `name` is invalid and must be `form`.
/// Returns the exit status for bad usage.
int failFor(const char* name, const std::string& value, const std::string& form);

/// Returns the options --month, --from, --to, --category and --search.
std::vector<linux_platform::CommandParameter> filterOptions();

/// Reads `filterOptions` into `filter`. --month together with --from or --to selects the days that
/// satisfy both. Returns 0, or as `failFor` when a value is invalid.
int readFilter(const linux_platform::GivenParameters& parameters, book::EntryFilter& filter);

}  // namespace kivo::ledger
