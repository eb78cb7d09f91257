#include "book/fitting_rules.h"

#include <algorithm>
#include <utility>

namespace kivo::book {

void sortByExactness(std::vector<FittingRule>& rules) {
  std::sort(rules.begin(), rules.end(), [](const FittingRule& one, const FittingRule& other) {
    if (one.pattern.isMoreExactThan(other.pattern)) return true;
    return !other.pattern.isMoreExactThan(one.pattern) && one.number > other.number;
  });
}

RuleMembers membersOf(const std::vector<FittingRule>& rules) { return membersBefore(0, rules); }

RuleMembers membersBefore(std::int64_t number, const std::vector<FittingRule>& rules) {
  RuleMembers members;
  for (const FittingRule& rule : rules) {
    if (rule.number == number) break;
    members = completed(std::move(members), rule.members);
  }
  return members;
}

}  // namespace kivo::book
