// The commands of kivo-ledger that change the book.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/terminal/command_line.h"
#include "recording/rereading.h"

namespace kivo::ledger {

/// edit, accept, delete, forget-texts.
std::vector<linux_platform::Command> editingCommands();

/// Returns the line that says how a transaction was booked: "Booked as EGP 150.00."
std::string bookedSentence(const recording::BookedSum& sum);

/// Books the entry `id` as the user stated it, so that no template changes it; a `category` holds
/// for its payee. Call it in a step. Throws CommandFailure when its sum cannot be booked in
/// `currency`, the book's, and BookFailure.
recording::BookedSum bookAsStated(book::Book& book, std::int64_t id,
                                  const std::optional<std::string>& category,
                                  const money::CurrencyCode& currency);

}  // namespace kivo::ledger
