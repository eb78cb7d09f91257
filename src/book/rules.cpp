#include "book/rules.h"

#include <map>
#include <utility>

#include "book/book_categories.h"
#include "book/database.h"
#include "book/fitting_rules.h"
#include "book/history.h"
#include "book/look_alikes.h"
#include "book/pairs.h"
#include "book/stored_entry.h"
#include "names/payee_key.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

using names::NamePattern;

constexpr const char* selection =
    "SELECT number, payee, written, description, category, kind FROM rules";

// A damaged file may hold any bytes.
std::optional<std::string> textOf(const Statement& row, int column) {
  const std::string text = row.text(column);
  return text.empty() ? std::nullopt : std::optional(platform::repairedUtf8(text));
}

RuleMembers membersOf(const Statement& row) {
  return {.description = textOf(row, 3),
          .category = textOf(row, 4),
          .kind = money::kindFromText(row.text(5))};
}

Rule ruleOf(const Statement& row) {
  return {
      .number = row.integer(0), .payee = textOf(row, 2).value_or(""), .members = membersOf(row)};
}

// The rules that match a folded name, the most exact first. The only one without a wildcard is
// looked up, all others are tried.
std::vector<FittingRule> fittingRules(Database& database, const std::string& folded) {
  const std::string sql = std::string(selection) + " WHERE payee = ? UNION ALL " + selection +
                          " WHERE has_wildcard <> 0 AND payee <> ?";
  Statement query(database, sql);
  const std::string own = NamePattern::textFor(folded);
  query.bind(own).bind(own);
  std::vector<FittingRule> fitting;
  while (next(query)) {
    auto pattern = NamePattern::fromFoldedText(query.text(1));
    if (!pattern || !pattern->matches(folded)) continue;
    fitting.push_back({query.integer(0), *std::move(pattern), membersOf(query)});
  }
  sortByExactness(fitting);
  return fitting;
}

std::optional<Rule> ruleFor(Database& database, const NamePattern& pattern) {
  const std::string sql = std::string(selection) + " WHERE payee = ?";
  Statement query(database, sql);
  const std::string text = pattern.text();
  if (!next(query.bind(text))) return std::nullopt;
  return ruleOf(query);
}

std::optional<NamePattern> patternOf(Database& database, std::int64_t number) {
  Statement query(database, "SELECT payee FROM rules WHERE number = ?");
  if (!next(query.bind(number))) return std::nullopt;
  return NamePattern::fromFoldedText(query.text(0));
}

void writeMembers(Database& database, const Rule& rule) {
  Statement update(database, R"(
    UPDATE rules SET description = nullif(?, ''), category = nullif(?, ''), kind = nullif(?, '')
    WHERE number = ?)");
  const std::string description = rule.members.description.value_or("");
  const std::string category = rule.members.category.value_or("");
  update.bind(description).bind(category);
  update.bind(rule.members.kind ? kindText(*rule.members.kind) : "").bind(rule.number);
  run(update);
}

std::int64_t insertRule(Database& database, const NamePattern& pattern,
                        const std::string& written) {
  Statement insertion(
      database,
      "INSERT INTO rules (payee, written, has_wildcard) VALUES (?, ?, ?) RETURNING number");
  const std::string text = pattern.text();
  insertion.bind(text).bind(written).bind(std::int64_t{pattern.hasWildcard() ? 1 : 0});
  if (!next(insertion)) throw BookFailure("a new row has no number");
  const std::int64_t number = insertion.integer(0);
  run(insertion);
  return number;
}

// The ids of the entries, booked or in review, whose payees match `pattern`, ascending.
std::vector<std::int64_t> entriesOf(Database& database, const NamePattern& pattern) {
  Statement query(database, R"(
    SELECT id, folded_payee FROM transactions
    WHERE state IN ('booked', 'review') AND folded_payee <> '' ORDER BY id)");
  std::vector<std::int64_t> ids;
  while (next(query)) {
    if (pattern.matches(query.text(1))) ids.push_back(query.integer(0));
  }
  return ids;
}

// Gives `entry` `members`, the category as the book spells it; returns false when nothing changes.
bool give(Database& database, const RuleMembers& members, LedgerEntry& entry) {
  const LedgerEntry before = entry;
  if (members.description) entry.description = *members.description;
  if (members.category) entry.category = spelledCategory(database, *members.category, entry.id);
  if (members.kind) setKind(entry, *members.kind);
  return !entry.readsAs(before);
}

// The entries that `kept` would change, by their ids, as they would be.
std::vector<LedgerEntry> changedBy(Database& database, const KeptRule& kept) {
  const auto pattern = patternOf(database, kept.rule.number);
  if (!pattern) return {};
  std::map<std::string, RuleMembers> givenTo;  // by the folded payee
  std::vector<LedgerEntry> changed;
  for (const std::int64_t id : entriesOf(database, *pattern)) {
    auto entry = storedEntry(database, id);
    if (!entry || entry->state == LedgerEntry::State::setAside) continue;
    const names::PayeeKey payee(entry->payee);
    const auto [found, isNew] = givenTo.try_emplace(payee.text());
    if (isNew) {
      found->second = without(
          kept.given, membersBefore(kept.rule.number, fittingRules(database, payee.text())));
    }
    if (give(database, found->second, *entry)) changed.push_back(*std::move(entry));
  }
  return changed;
}

EarlierEntries idsOf(const std::vector<LedgerEntry>& entries) {
  EarlierEntries ids;
  for (const LedgerEntry& entry : entries) {
    (entry.edited ? ids.edited : ids.changing).push_back(entry.id);
  }
  return ids;
}

}  // namespace

void applyRules(Database& database, LedgerEntry& entry) {
  const names::PayeeKey payee(entry.payee);
  if (payee.text().empty()) return;
  const RuleMembers members = membersOf(fittingRules(database, payee.text()));
  if (members.description) entry.description = *members.description;
  if (members.category) entry.category = *members.category;
  if (members.kind) setKind(entry, *members.kind);
}

std::vector<Rule> storedRules(Database& database) {
  const std::string sql = std::string(selection) + " ORDER BY payee";
  Statement query(database, sql);
  std::vector<Rule> rules;
  while (next(query)) rules.push_back(ruleOf(query));
  return rules;
}

std::optional<KeptRule> keepRule(Database& database, ChangeNotes& notes, const std::string& payee,
                                 RuleMembers members) {
  const auto pattern = NamePattern::fromText(payee);
  if (!pattern || members.empty()) return std::nullopt;
  if (members.category) members.category = spelledCategory(database, *members.category);
  const auto known = ruleFor(database, *pattern);
  KeptRule kept{.rule = known.value_or(Rule{.payee = payee}), .given = members};
  if (known) {
    kept.before = known->members;
    notes.rule(known->number);
  } else {
    kept.rule.number = insertRule(database, *pattern, payee);
    notes.addedRule(kept.rule.number);
  }
  kept.rule.members = completed(std::move(members), kept.rule.members);
  writeMembers(database, kept.rule);
  return kept;
}

std::optional<Rule> removeRule(Database& database, ChangeNotes& notes, std::int64_t number) {
  const std::string sql = std::string(selection) + " WHERE number = ?";
  Statement query(database, sql);
  if (!next(query.bind(number))) return std::nullopt;
  Rule rule = ruleOf(query);
  run(query);
  notes.rule(number);
  Statement removal(database, "DELETE FROM rules WHERE number = ?");
  run(removal.bind(number));
  return rule;
}

EarlierEntries earlierFor(Database& database, const KeptRule& kept) {
  return idsOf(changedBy(database, kept));
}

EarlierEntries changeEarlier(Database& database, ChangeNotes& notes, const KeptRule& kept) {
  const std::vector<LedgerEntry> changed = changedBy(database, kept);
  for (const LedgerEntry& entry : changed) {
    if (entry.edited) continue;
    keepCategory(database, notes, entry.category, entry.id);
    notes.transaction(entry.id);
    writeRuled(database, entry);
    markAlikeAgain(database, entry.id);
    partUnfit(database, notes, entry.id);
  }
  return idsOf(changed);
}

}  // namespace kivo::book
