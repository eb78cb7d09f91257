// The commands of kivo-ledger that change the book.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/terminal/command_line.h"
#include "recording/rereading.h"

namespace kivo::ledger {

/// edit, accept, delete, forget-texts, rate.
std::vector<linux_platform::Command> editingCommands();

/// Returns the line that says how a transaction was booked: "Booked as EGP 150.00."
std::string bookedSentence(const recording::BookedSum& sum);

}  // namespace kivo::ledger
