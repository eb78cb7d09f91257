#include "book/fitting_rules.h"

#include <gmock/gmock.h>

namespace kivo::book {
namespace {

using money::Kind;
using names::NamePattern;
using testing::ElementsAre;

FittingRule rule(std::int64_t number, const char* pattern, const RuleMembers& members = {}) {
  return {number, NamePattern::fromText(pattern).value(), members};
}

std::vector<std::int64_t> sorted(std::vector<FittingRule> rules) {
  sortByExactness(rules);
  std::vector<std::int64_t> numbers;
  for (const FittingRule& each : rules) numbers.push_back(each.number);
  return numbers;
}

TEST(FittingRules, AreSortedByStarsThenCharactersThenAge) {
  EXPECT_THAT(sorted({rule(1, "town*"), rule(2, "town gas*"), rule(3, "town gas"), rule(4, "*gas"),
                      rule(5, "t*gas"), rule(6, "*town")}),
              ElementsAre(3, 2, 6, 5, 1, 4));
}

TEST(FittingRules, GiveEachMemberOfTheFirstThatHasIt) {
  const std::vector<FittingRule> rules = {
      rule(3, "town gas", {.category = "Gas"}),
      rule(2, "town*", {.description = "Town", .category = "Utilities"}),
      rule(1, "*n*", {.description = "All", .kind = Kind::transfer})};
  const RuleMembers together{.description = "Town", .category = "Gas", .kind = Kind::transfer};
  EXPECT_EQ(membersOf(rules), together);
  EXPECT_EQ(membersOf({}), RuleMembers());
}

}  // namespace
}  // namespace kivo::book
