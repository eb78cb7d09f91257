// Says what a rule of the user means for later payments.
#pragma once

#include <string>

#include "book/rule.h"
#include "money/kind.h"

namespace kivo::recording {

/// Returns what `members` make of payments: "transfers, Rent and called Flat". Names are as they
/// are kept, with their control characters.
std::string madeOf(const book::RuleMembers& members);

/// Returns "Later payments to TOWN GAS will be Utilities." for a rule of payments of the kind
/// `kind`. Names are as they are kept.
std::string ruleSentence(const book::Rule& rule, money::Kind kind);

}  // namespace kivo::recording
