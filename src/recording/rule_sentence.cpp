#include "recording/rule_sentence.h"

#include <cstddef>
#include <vector>

namespace kivo::recording {

using money::Kind;

namespace {

std::string laterKind(Kind kind) {
  if (kind == Kind::income) return "income";
  return kind == Kind::expense ? "expenses" : "transfers";
}

}  // namespace

std::string madeOf(const book::RuleMembers& members) {
  std::vector<std::string> parts;
  if (members.kind) parts.push_back(laterKind(*members.kind));
  if (members.category) parts.push_back(*members.category);
  if (members.description) parts.push_back("called " + *members.description);
  std::string text;
  for (std::size_t at = 0; at < parts.size(); ++at) {
    if (at > 0) text += at + 1 == parts.size() ? " and " : ", ";
    text += parts[at];
  }
  return text;
}

std::string ruleSentence(const book::Rule& rule, Kind kind) {
  const Kind later = rule.members.kind.value_or(kind);
  return std::string("Later payments ") + (later == Kind::income ? "from " : "to ") + rule.payee +
         " will be " + madeOf(rule.members) + ".";
}

}  // namespace kivo::recording
