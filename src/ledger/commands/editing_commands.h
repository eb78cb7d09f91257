// The commands of kivo-ledger that book and delete, and what they say.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ledger/commands/made_rules.h"
#include "platform/linux/terminal/command_line.h"
#include "recording/rereading.h"

namespace kivo::ledger {

/// accept, delete, forget-texts.
std::vector<linux_platform::Command> editingCommands();

/// Returns the sum as "EGP 150.00".
std::string codeAndSum(const money::Money& sum);

/// Returns the line that says how a transaction was booked: "Booked as EGP 150.00."
std::string bookedSentence(const recording::BookedSum& sum);

/// Books the entry `id` with the parts that the user stated, so that neither a rule nor a template
/// changes them; one without a message only counts as edited where it has some. `rules` gets the
/// rule that a category makes. Call it in a step. Throws CommandFailure when its sum cannot be
/// booked in `currency`, the book's, and BookFailure.
recording::BookedSum bookAsStated(book::Book& book, std::int64_t id,
                                  const book::EntryChange& stated,
                                  const money::CurrencyCode& currency, MadeRules& rules);

}  // namespace kivo::ledger
