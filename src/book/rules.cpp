#include "book/rules.h"

#include <string>
#include <string_view>

#include "book/book_file.h"
#include "book/history.h"
#include "names/payee_key.h"

namespace kivo::book {
namespace {

using linux_platform::Statement;

// The pattern that only `name` matches.
std::string patternOf(std::string_view name) {
  std::string pattern;
  for (const char c : name) {
    if (c == '*' || c == '\\') pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace

void applyRules(sqlite3* database, LedgerEntry& entry) {
  const names::PayeeKey payee(entry.payee);
  if (payee.text().empty()) return;
  Statement query(database, "SELECT description, category FROM rules WHERE payee = ?");
  const std::string pattern = patternOf(payee.text());
  if (!next(query.bind(pattern))) return;
  if (!query.text(0).empty()) entry.description = query.text(0);
  if (!query.text(1).empty()) entry.category = query.text(1);
}

void keepRuleOf(sqlite3* database, ChangeNotes& notes, const LedgerEntry& entry,
                const EntryChange& change) {
  const names::PayeeKey payee(entry.payee);
  if (payee.text().empty() || !(change.description || change.category)) return;
  const std::string pattern = patternOf(payee.text());
  const std::string written = patternOf(entry.payee);
  Statement known(database, "SELECT number FROM rules WHERE payee = ?");
  const bool isKnown = next(known.bind(pattern));
  if (isKnown) notes.rule(known.integer(0));
  Statement upsert(database, R"(
    INSERT INTO rules (payee, written, has_wildcard, description, category)
    VALUES (?, ?, 0, nullif(?, ''), nullif(?, ''))
    ON CONFLICT (payee) DO UPDATE SET
      description = coalesce(excluded.description, description),
      category = coalesce(excluded.category, category)
    RETURNING number)");
  upsert.bind(pattern).bind(written);
  upsert.bind(change.description ? std::string_view(entry.description) : "");
  upsert.bind(change.category ? std::string_view(entry.category) : "");
  if (!next(upsert)) throw BookFailure("a new row has no number");
  if (!isKnown) notes.addedRule(upsert.integer(0));
  run(upsert);
}

}  // namespace kivo::book
