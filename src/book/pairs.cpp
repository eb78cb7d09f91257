#include "book/pairs.h"

#include <algorithm>
#include <set>
#include <utility>

#include "book/database.h"
#include "book/look_alikes.h"
#include "book/stored_entry.h"

namespace kivo::book {

namespace {

void writeOtherHalf(Database& database, std::int64_t id, std::optional<std::int64_t> other) {
  Statement update(database, "UPDATE transactions SET counterpart = ? WHERE id = ?");
  update.bindIfPresent(other);
  run(update.bind(id));
}

void part(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other) {
  for (const std::int64_t id : {one, other}) {
    notes.transaction(id);
    writeOtherHalf(database, id, std::nullopt);
  }
  for (const std::int64_t id : {one, other}) markAlikeAgain(database, id);
}

// The row that says that a person parted the two; nullopt when there is none.
std::optional<std::int64_t> separation(Database& database, std::int64_t one, std::int64_t other) {
  Statement query(database, "SELECT number FROM separated WHERE one = ? AND other = ?");
  if (!next(query.bind(std::min(one, other)).bind(std::max(one, other)))) return std::nullopt;
  return query.integer(0);
}

void separate(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other) {
  Statement insertion(database,
                      "INSERT INTO separated (one, other) VALUES (?, ?) RETURNING number");
  if (!next(insertion.bind(std::min(one, other)).bind(std::max(one, other)))) {
    throw BookFailure("a new row has no number");
  }
  const std::int64_t number = insertion.integer(0);
  run(insertion);
  notes.addedSeparation(number);
}

void forgetSeparation(Database& database, ChangeNotes& notes, std::int64_t one,
                      std::int64_t other) {
  const auto number = separation(database, one, other);
  if (!number) return;
  notes.separation(*number);
  Statement removal(database, "DELETE FROM separated WHERE number = ?");
  run(removal.bind(*number));
}

// The entries that have the entry `id` as their other half.
std::vector<std::int64_t> havingAsOtherHalf(Database& database, std::int64_t id) {
  Statement query(database, "SELECT id FROM transactions WHERE counterpart = ? ORDER BY id");
  query.bind(id);
  std::vector<std::int64_t> found;
  while (next(query)) found.push_back(query.integer(0));
  return found;
}

// Of an entry that a command had changed and that is as before it: the half that it joined
// meanwhile, if they fit; else neither has one.
void repairHalves(Database& database, std::int64_t id) {
  const auto entry = storedEntry(database, id);
  const std::vector<std::int64_t> joined = havingAsOtherHalf(database, id);
  const auto fits = [&](std::int64_t other) {
    const auto half = storedEntry(database, other);
    return entry && half && fitTogether(*entry, *half);
  };
  std::optional<std::int64_t> kept = entry ? entry->counterpart : std::nullopt;
  if (!kept && entry && !joined.empty()) kept = joined.front();
  const bool agree = kept && std::ranges::find(joined, *kept) != joined.end() && fits(*kept);
  for (const std::int64_t other : joined) {
    if (agree && other == *kept) continue;
    writeOtherHalf(database, other, std::nullopt);
    markAlikeAgain(database, other);
  }
  if (entry) writeOtherHalf(database, id, agree ? kept : std::nullopt);
}

}  // namespace

std::optional<std::int64_t> otherHalf(Database& database, const LedgerEntry& entry) {
  const bool canHave = entry.state == LedgerEntry::State::booked && entry.amount &&
                       !entry.counterpart && !entry.refund && !entry.account.empty() &&
                       !entry.reference.empty();
  if (!canHave) return std::nullopt;
  // The signs keep SQLite from another index than that of references.
  Statement query(database, R"(
    SELECT id FROM transactions AS other
    WHERE reference = ? AND reference <> '' AND +user = ? AND +state = 'booked' AND
      +counterpart IS NULL AND refund = 0 AND minor_units = ? AND currency = ? AND
      incoming <> ? AND account NOT IN ('', ?) AND
      +date BETWEEN ? AND ? AND +id <> ?9 AND
      NOT EXISTS (SELECT 1 FROM separated WHERE (one = other.id AND separated.other = ?9) OR
        (one = ?9 AND separated.other = other.id))
    ORDER BY id LIMIT 1)");
  const std::string currency = entry.amount->currency.text();
  constexpr int mostDaysApart = 2;
  const std::string first = entry.date.before(mostDaysApart).text();
  const std::string last = entry.date.before(-mostDaysApart).text();
  query.bind(entry.reference).bind(entry.userId).bind(entry.amount->minorUnits).bind(currency);
  query.bind(std::int64_t{entry.incoming}).bind(entry.account).bind(first).bind(last);
  query.bind(entry.id);
  if (!next(query)) return std::nullopt;
  return query.integer(0);
}

std::vector<LikelyPair> likelyPairs(Database& database) {
  // The entries that came in are fewer; each finds the others by day and sum.
  const auto beside = [&](int days) { return database.dayBeside("came.date", days); };
  const std::string oneApart = beside(-1) + ", " + beside(1);
  const std::string twoApart = beside(-2) + ", " + beside(2);
  Statement query(database, R"(
    SELECT went.id, came.id FROM transactions AS came CROSS JOIN transactions AS went
    WHERE came.state = 'booked' AND came.incoming <> 0 AND came.counterpart IS NULL AND
      came.refund = 0 AND came.account <> '' AND
      went.date IN (came.date, )" +
                                oneApart + ", " + twoApart + R"() AND
      went.minor_units = came.minor_units AND went.currency = came.currency AND
      +went.state = 'booked' AND went.incoming = 0 AND went.counterpart IS NULL AND
      went.account NOT IN ('', came.account) AND +went.user = came.user AND
      NOT EXISTS (SELECT 1 FROM separated WHERE (one = came.id AND other = went.id) OR
        (one = went.id AND other = came.id))
    ORDER BY came.date DESC, came.id DESC, CASE WHEN went.date = came.date THEN 0
      WHEN went.date IN ()" + oneApart +
                                R"() THEN 1 ELSE 2 END, went.id)");
  std::vector<LikelyPair> found;
  std::set<std::int64_t> taken;
  while (next(query)) {
    const LikelyPair pair{.outgoing = query.integer(0), .incoming = query.integer(1)};
    if (taken.contains(pair.outgoing) || taken.contains(pair.incoming)) continue;
    taken.insert({pair.outgoing, pair.incoming});
    found.push_back(pair);
  }
  return found;
}

bool pairEntries(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other) {
  const auto first = storedEntry(database, one);
  const auto second = storedEntry(database, other);
  const bool areFree = first && second && !first->counterpart && !second->counterpart;
  if (!areFree || !fitTogether(*first, *second)) return false;
  forgetSeparation(database, notes, one, other);
  join(database, notes, one, other);
  return true;
}

bool unpairEntries(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other) {
  const auto first = storedEntry(database, one);
  const auto second = storedEntry(database, other);
  if (one == other || !first || !second) return false;
  const bool arePair = first->counterpart == other && second->counterpart == one;
  const bool areOthers = !arePair && (first->counterpart || second->counterpart);
  if (areOthers || separation(database, one, other)) return false;
  if (arePair) part(database, notes, one, other);
  for (const std::int64_t id : {one, other}) notes.transaction(id);  // for the history
  separate(database, notes, one, other);
  return true;
}

void join(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other) {
  for (const auto& [id, half] : {std::pair(one, other), std::pair(other, one)}) {
    notes.transaction(id);
    writeOtherHalf(database, id, half);
  }
  for (const std::int64_t id : {one, other}) markAlikeAgain(database, id);
}

void partUnfit(Database& database, ChangeNotes& notes, std::int64_t id) {
  const auto entry = storedEntry(database, id);
  if (!entry || !entry->counterpart) return;
  const auto other = storedEntry(database, *entry->counterpart);
  if (other && fitTogether(*entry, *other)) return;
  part(database, notes, id, *entry->counterpart);
}

void pairAgain(Database& database, ChangeNotes& notes, std::int64_t id) {
  partUnfit(database, notes, id);
  const auto entry = storedEntry(database, id);
  const auto other = entry ? otherHalf(database, *entry) : std::nullopt;
  if (other) join(database, notes, id, *other);
}

void freeOtherHalf(Database& database, ChangeNotes& notes, std::int64_t id) {
  for (const std::int64_t other : havingAsOtherHalf(database, id)) {
    notes.transaction(other);
    writeOtherHalf(database, other, std::nullopt);
    markAlikeAgain(database, other);
  }
}

void repairHalvesAfter(Database& database, std::int64_t number) {
  Statement query(database, "SELECT id FROM past_transactions WHERE command = ?");
  query.bind(number);
  std::vector<std::int64_t> ids;
  while (next(query)) ids.push_back(query.integer(0));
  query.reset();
  for (const std::int64_t id : ids) repairHalves(database, id);
}

}  // namespace kivo::book
