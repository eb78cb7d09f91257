// Formats rules for payees as a list and as JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "book/rule.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::ledger::RuleListing {

/// Returns a table of `rules` for a screen of `width` columns, with control characters escaped;
/// where it has no room, two or more lines for each rule.
std::string list(const std::vector<book::Rule>& rules, std::size_t width);

/// Returns `rule` as a JSON object of strings: "number", "payee", "description", "category" and
/// "kind", of which the last three are empty where the rule does not have them.
platform::JSONEncoder json(const book::Rule& rule);

}  // namespace kivo::ledger::RuleListing
