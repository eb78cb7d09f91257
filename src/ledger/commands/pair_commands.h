// `kivo-ledger pair` and `unpair`, and the transfers that `review` offers to pair.
#pragma once

#include <string>
#include <vector>

#include "book/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

std::vector<linux_platform::Command> pairCommands();

/// Returns lines that name the entries of `book` that look like one transfer, with the command that
/// joins them; empty when there are none.
std::string pairOffers(const book::Book& book);

}  // namespace kivo::ledger
