#include "book/rule.h"

namespace kivo::book {

RuleMembers completed(RuleMembers members, const RuleMembers& others) {
  if (!members.description) members.description = others.description;
  if (!members.category) members.category = others.category;
  if (!members.kind) members.kind = others.kind;
  return members;
}

RuleMembers without(RuleMembers members, const RuleMembers& others) {
  if (others.description) members.description.reset();
  if (others.category) members.category.reset();
  if (others.kind) members.kind.reset();
  return members;
}

}  // namespace kivo::book
