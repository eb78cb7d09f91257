// The texts of an entry in the form that more than one export format needs.
#pragma once

#include <string>
#include <string_view>

#include "book/ledger_entry.h"

namespace kivo::overview {

/// Returns `text` (UTF-8) on one line: each run of blanks, line breaks and control characters
/// becomes one space, and none remains at the ends. What XML does not allow counts as a control
/// character.
std::string oneLine(std::string_view text);

/// Returns `text` with each `from` replaced by `to`.
std::string withReplaced(std::string text, char from, char to);

/// Returns a name by which an import recognises `entry`: its id and 16 hexadecimal digits, such as
/// "42-9f86d081884c7d65". It never changes, no entry of another book has it, and the key of the
/// entry cannot be computed from it.
std::string importId(const book::LedgerEntry& entry);

}  // namespace kivo::overview
