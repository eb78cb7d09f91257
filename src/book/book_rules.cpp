// The calls of Book for the rules of payees.
#include "book/book.h"
#include "book/book_state.h"
#include "book/rules.h"
#include "names/name_pattern.h"

namespace kivo::book {

std::vector<Rule> Book::rules() const { return storedRules(file_->database); }

std::optional<KeptRule> Book::keepRule(const std::string& payee, const RuleMembers& members) {
  std::optional<KeptRule> kept;
  inOneStep([&] { kept = book::keepRule(file_->database, file_->notes, payee, members); });
  return kept;
}

std::optional<KeptRule> Book::keepRuleOf(std::int64_t id, const EntryChange& change) {
  std::optional<KeptRule> kept;
  inOneStep([&] {
    const auto named = entry(id);
    if (!named) return;
    RuleMembers members;
    if (change.description) members.description = named->description;
    if (change.category) members.category = named->category;
    kept = keepRule(names::NamePattern::textFor(named->payee), members);
  });
  return kept;
}

std::optional<Rule> Book::removeRule(std::int64_t number) {
  std::optional<Rule> removed;
  inOneStep([&] { removed = book::removeRule(file_->database, file_->notes, number); });
  return removed;
}

EarlierEntries Book::earlierFor(const KeptRule& kept) const {
  return book::earlierFor(file_->database, kept);
}

EarlierEntries Book::changeEarlier(const KeptRule& kept) {
  EarlierEntries changed;
  inOneStep([&] { changed = book::changeEarlier(file_->database, file_->notes, kept); });
  return changed;
}

}  // namespace kivo::book
