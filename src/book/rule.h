// A rule of the user for the payments of a payee. Reads no book.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "money/kind.h"

namespace kivo::book {

/// What a rule gives to payments. An absent member leaves theirs as it is.
struct RuleMembers {
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
  std::optional<money::Kind> kind = {};

  [[nodiscard]] bool empty() const { return !description && !category && !kind; }
  bool operator==(const RuleMembers&) const = default;
};

/// Returns `members`, with those of `others` in the place of absent ones.
RuleMembers completed(RuleMembers members, const RuleMembers& others);
/// Returns `members` without those that are in `others`.
RuleMembers without(RuleMembers members, const RuleMembers& others);

struct Rule {
  /// Never given again.
  std::int64_t number = 0;
  /// The pattern of the payees' names, as it was written: `*` is any characters, `\*` a star and
  /// `\\` a backslash.
  std::string payee;
  RuleMembers members = {};
};

/// The outcome of keeping a rule.
struct KeptRule {
  Rule rule;
  /// The members that were given now, as the rule has them.
  RuleMembers given;
  /// The members that the payee's rule had before; absent when it had no rule.
  std::optional<RuleMembers> before = {};
};

/// The entries, booked or in review, that a rule would change or has changed: their ids, ascending.
struct EarlierEntries {
  std::vector<std::int64_t> changing = {};
  /// Those that the user edited, which stay as they are.
  std::vector<std::int64_t> edited = {};
};

}  // namespace kivo::book
