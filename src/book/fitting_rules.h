// Decides between rules that match the same name. Reads no book.
#pragma once

#include <cstdint>
#include <vector>

#include "book/rule.h"
#include "names/name_pattern.h"

namespace kivo::book {

/// A rule whose pattern matches the name.
struct FittingRule {
  std::int64_t number = 0;
  names::NamePattern pattern;
  RuleMembers members;
};

/// Puts the more exact pattern first, of equally exact ones the newer rule.
void sortByExactness(std::vector<FittingRule>& rules);

/// Returns the members that sorted `rules` give together: each one from the first that has it.
RuleMembers membersOf(const std::vector<FittingRule>& rules);
/// Returns the members that those before the rule `number` give together.
RuleMembers membersBefore(std::int64_t number, const std::vector<FittingRule>& rules);

}  // namespace kivo::book
