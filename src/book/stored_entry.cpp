#include "book/stored_entry.h"

#include <limits>
#include <string>

#include "book/book_command.h"
#include "book/database.h"
#include "book/filter_sql.h"
#include "names/payee_key.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

constexpr const char* columns =
    "id, key, date, kind, minor_units, currency, description, category, payee, account, "
    "reference, state, possible_duplicate_of, text, edited, user, original, original_currency, "
    "balance, balance_currency, refund, incoming, counterpart";

// A sum that an entry keeps besides its own; absent when its values cannot be.
std::optional<money::Money> sumOf(const Statement& row, int column) {
  const auto currency = money::CurrencyCode::fromText(row.text(column + 1));
  if (row.isNull(column) || !currency) return std::nullopt;
  return money::Money{row.integer(column), *currency};
}

// Such a sum, to be bound to two parameters.
struct KeptSum {
  explicit KeptSum(const std::optional<money::Money>& sum)
      : units(sum ? std::optional(sum->minorUnits) : std::nullopt),
        currency(sum ? sum->currency.text() : "") {}
  void bindTo(Statement& statement) const { statement.bindIfPresent(units).bind(currency); }

  std::optional<std::int64_t> units;
  std::string currency;
};

// A damaged file may hold any bytes.
LedgerEntry entryOf(const Statement& row) {
  const auto text = [&row](int column) { return platform::repairedUtf8(row.text(column)); };
  const auto kind = money::kindFromText(row.text(3));
  const auto state = stateFromText(row.text(11));
  LedgerEntry entry;
  entry.id = row.integer(0);
  entry.key = text(1);
  const auto date = money::Day::fromText(row.text(2));
  if (date) entry.date = *date;
  if (!date) entry.impossibleDate = text(2);
  entry.kind = kind.value_or(money::Kind::expense);
  if (!row.isNull(4)) {
    const auto currency = money::CurrencyCode::fromText(row.text(5));
    entry.amount = money::Money{row.integer(4), currency.value_or(money::CurrencyCode())};
    if (!currency || currency->text() != row.text(5)) entry.impossibleCurrency = text(5);
  }
  entry.description = text(6);
  entry.category = text(7);
  entry.payee = text(8);
  entry.account = text(9);
  entry.reference = text(10);
  entry.state = state.value_or(LedgerEntry::State::setAside);
  if (!row.isNull(12)) entry.possibleDuplicateOf = row.integer(12);
  if (!row.isNull(13)) entry.text = text(13);
  entry.edited = row.integer(14) != 0;
  entry.userId = row.text(15);
  entry.original = sumOf(row, 16);
  entry.balance = sumOf(row, 18);
  entry.refund = entry.kind == money::Kind::income && row.integer(20) != 0;
  entry.incoming = entry.kind == money::Kind::income ||
                   (entry.kind == money::Kind::transfer && row.integer(21) != 0);
  if (!row.isNull(22)) entry.counterpart = row.integer(22);
  if (!kind || !impossibleValue(entry).empty()) entry.state = LedgerEntry::State::setAside;
  return entry;
}

std::string dateText(const LedgerEntry& entry) {
  return entry.impossibleDate.value_or(entry.date.text());
}

std::optional<std::int64_t> unitsOf(const LedgerEntry& entry) {
  return entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt;
}

// Whether it is a refund, and whether it came in, to two parameters.
void bindDirection(Statement& statement, const LedgerEntry& entry) {
  statement.bind(std::int64_t{entry.refund}).bind(std::int64_t{entry.incoming});
}

std::string currencyText(const LedgerEntry& entry) {
  return entry.impossibleCurrency.value_or(entry.amount ? entry.amount->currency.text() : "");
}

// The rows of the entries that a filter chooses, newest first. Keeps the texts that are bound.
struct ChosenRows {
  ChosenRows(Database& database, const std::string& ofColumns, const EntryFilter& filter)
      : condition(sqlOf(database, filter)),
        query(database, "SELECT " + ofColumns + " FROM transactions WHERE " + condition.condition +
                            " ORDER BY date DESC, id DESC LIMIT ?") {
    for (const std::string& value : condition.values) query.bind(value);
    query.bind(filter.most < 0 ? std::numeric_limits<std::int64_t>::max() : filter.most);
  }

  FilterSql condition;
  Statement query;
};

}  // namespace

std::vector<LedgerEntry> storedEntries(Database& database, const EntryFilter& filter) {
  ChosenRows chosen(database, columns, filter);
  Statement& query = chosen.query;
  std::vector<LedgerEntry> found;
  std::string impossible;
  while (next(query)) {
    LedgerEntry entry = entryOf(query);
    if (entry.state == filter.state) {
      found.push_back(std::move(entry));
    } else {  // it was whole when it was written
      impossible += (impossible.empty() ? "" : ", ") + std::to_string(entry.id);
    }
  }
  if (!impossible.empty()) {
    database.noteDamage("the values of these transactions cannot be: " + impossible +
                        "; look at them with " + bookCommand("show") + ", and edit or delete them");
  }
  return found;
}

std::vector<EntryPlace> placesOfEntries(Database& database, const EntryFilter& filter) {
  ChosenRows chosen(database, "id, date", filter);
  Statement& query = chosen.query;
  std::vector<EntryPlace> places;
  while (next(query)) {
    const auto date = money::Day::fromText(query.text(1));
    if (date) places.push_back({query.integer(0), *date});
  }
  return places;
}

std::optional<LedgerEntry> storedEntry(Database& database, std::int64_t id) {
  const std::string sql = std::string("SELECT ") + columns + " FROM transactions WHERE id = ?";
  Statement query(database, sql);
  if (!next(query.bind(id))) return std::nullopt;
  return entryOf(query);
}

std::int64_t insertEntry(Database& database, const LedgerEntry& entry) {
  Statement insertion(database, R"(
    INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category,
      payee, folded_payee, account, reference, state, original, original_currency,
      balance, balance_currency, refund, incoming, counterpart, possible_duplicate_of, text)
    VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id)");
  const names::PayeeKey payee(entry.payee);
  const std::string date = dateText(entry);
  const std::string currency = currencyText(entry);
  insertion.bind(entry.userId).bind(entry.key).bind(date).bind(kindText(entry.kind));
  insertion.bindIfPresent(unitsOf(entry)).bind(currency);
  insertion.bind(entry.description).bind(entry.category).bind(entry.payee).bind(payee.text());
  insertion.bind(entry.account).bind(entry.reference).bind(stateText(entry.state));
  const KeptSum original(entry.original);
  const KeptSum balance(entry.balance);
  original.bindTo(insertion);
  balance.bindTo(insertion);
  bindDirection(insertion, entry);
  insertion.bindIfPresent(entry.counterpart).bindIfPresent(entry.possibleDuplicateOf);
  if (entry.text) insertion.bind(*entry.text);
  if (!entry.text) insertion.bindIfPresent(std::nullopt);
  if (!next(insertion)) throw BookFailure("a new row has no number");
  const std::int64_t id = insertion.integer(0);
  run(insertion);
  return id;
}

void writeEdited(Database& database, const LedgerEntry& entry) {
  Statement update(database, R"(
    UPDATE transactions SET date = ?, kind = ?, minor_units = ?, currency = ?, description = ?,
      category = ?, state = ?, original = ?, original_currency = ?, refund = ?, incoming = ?,
      edited = 1 WHERE id = ?)");
  const std::string date = dateText(entry);
  const std::string currency = currencyText(entry);
  update.bind(date).bind(kindText(entry.kind));
  update.bindIfPresent(unitsOf(entry)).bind(currency);
  update.bind(entry.description).bind(entry.category).bind(stateText(entry.state));
  const KeptSum original(entry.original);
  original.bindTo(update);
  bindDirection(update, entry);
  run(update.bind(entry.id));
}

void writeRuled(Database& database, const LedgerEntry& entry) {
  Statement update(database, R"(
    UPDATE transactions SET description = ?, category = ?, kind = ?, refund = ?, incoming = ?
    WHERE id = ?)");
  update.bind(entry.description).bind(entry.category).bind(kindText(entry.kind));
  bindDirection(update, entry);
  run(update.bind(entry.id));
}

void writeBookedSum(Database& database, std::int64_t id, const money::Money& amount,
                    const std::optional<money::Money>& kept) {
  Statement update(database, R"(
    UPDATE transactions SET state = 'booked', minor_units = ?, currency = ?, original = ?,
      original_currency = ? WHERE id = ?)");
  const std::string currency = amount.currency.text();
  update.bind(amount.minorUnits).bind(currency);
  const KeptSum original(kept);
  original.bindTo(update);
  run(update.bind(id));
}

bool writeBooked(Database& database, const LedgerEntry& entry) {
  Statement update(database, R"(
    UPDATE transactions SET kind = ?, minor_units = ?, currency = ?, description = ?, category = ?,
      payee = ?, folded_payee = ?, account = ?, reference = ?, original = ?,
      original_currency = ?, balance = ?, balance_currency = ?, refund = ?, incoming = ?,
      state = 'booked'
    WHERE id = ? AND state IN ('booked', 'review') AND edited = 0 RETURNING id)");
  const names::PayeeKey payee(entry.payee);
  const std::string currency = currencyText(entry);
  update.bind(kindText(entry.kind));
  update.bindIfPresent(unitsOf(entry)).bind(currency);
  update.bind(entry.description).bind(entry.category).bind(entry.payee).bind(payee.text());
  update.bind(entry.account).bind(entry.reference);
  const KeptSum original(entry.original);
  const KeptSum balance(entry.balance);
  original.bindTo(update);
  balance.bindTo(update);
  bindDirection(update, entry);
  if (!next(update.bind(entry.id))) return false;
  run(update);
  return true;
}

}  // namespace kivo::book
