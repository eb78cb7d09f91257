#include "ledger/book.h"

#include <utility>

#include "ledger/book_categories.h"
#include "ledger/book_damage.h"
#include "ledger/book_file.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/store/replaced_text.h"

namespace kivo::ledger {
namespace {

using linux_platform::Statement;
using linux_platform::Transaction;

constexpr const char* columns =
    "id, key, date, kind, minor_units, currency, description, category, payee, account, "
    "reference, state, possible_duplicate_of, text, edited";

// A damaged file may hold any bytes.
LedgerEntry entryOf(const Statement& row) {
  const auto text = [&row](int column) { return platform::repairedUtf8(row.text(column)); };
  const auto kind = kindFromText(row.text(3));
  const auto state = stateFromText(row.text(11));
  LedgerEntry entry;
  entry.id = row.integer(0);
  entry.key = text(1);
  entry.date = text(2);
  entry.kind = kind.value_or(Kind::expense);
  if (!row.isNull(4)) entry.amount = Money{row.integer(4), text(5)};
  entry.description = text(6);
  entry.category = text(7);
  entry.payee = text(8);
  entry.account = text(9);
  entry.reference = text(10);
  entry.state = state.value_or(LedgerEntry::State::setAside);
  if (!row.isNull(12)) entry.possibleDuplicateOf = row.integer(12);
  if (!row.isNull(13)) entry.text = text(13);
  entry.edited = row.integer(14) != 0;
  if (!kind || !impossibleValue(entry).empty()) entry.state = LedgerEntry::State::setAside;
  return entry;
}

// The LIKE pattern for texts that contain `part`.
std::string patternFor(const std::string& part) {
  std::string pattern = "%";
  for (const char c : part) {
    if (c == '%' || c == '_' || c == '\\') pattern += '\\';
    pattern += c;
  }
  return pattern + "%";
}

}  // namespace

Book::Book(linux_platform::Database database, MessageReader reader)
    : database_(std::move(database)), reader_(std::move(reader)) {}

std::optional<Book> Book::open(MessageReader reader) {
  linux_platform::Database database = openBookFile();
  if (database == nullptr) return std::nullopt;
  return Book(std::move(database), std::move(reader));
}

std::vector<LedgerEntry> Book::entries(const EntryFilter& filter) const {
  const std::string pattern = patternFor(filter.search);
  const std::string category =
      filter.category.empty() ? "" : spelledCategory(database_.get(), filter.category);
  std::string sql = std::string("SELECT ") + columns + " FROM transactions WHERE state = ?";
  if (!filter.from.empty()) sql += " AND date >= ?";
  if (!filter.to.empty()) sql += " AND date <= ?";
  if (!filter.category.empty()) sql += " AND category = ?";
  if (!filter.search.empty()) {
    sql += R"( AND description || char(10) || category || char(10) || account || char(10) ||
             reference LIKE ? ESCAPE '\')";
  }
  sql += " ORDER BY date DESC, id DESC LIMIT ?";
  Statement query(database_.get(), sql.c_str());
  query.bind(stateText(filter.state));
  for (const std::string& bound :
       {std::cref(filter.from), std::cref(filter.to), std::cref(category)}) {
    if (!bound.empty()) query.bind(bound);
  }
  if (!filter.search.empty()) query.bind(pattern);
  query.bind(filter.most);
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
    noteDamage(database_.get(),
               "the values of these transactions cannot be: " + impossible +
                   "; look at them with kivo-ledger show, and edit or delete them");
  }
  return found;
}

std::optional<LedgerEntry> Book::entry(std::int64_t id) const {
  const std::string sql = std::string("SELECT ") + columns + " FROM transactions WHERE id = ?";
  Statement query(database_.get(), sql.c_str());
  if (!next(query.bind(id))) return std::nullopt;
  return entryOf(query);
}

bool Book::edit(std::int64_t id, const EntryChange& change) {
  Transaction transaction(database_.get());
  require(transaction.code());
  auto edited = entry(id);
  if (!edited) return false;
  if (change.date) edited->date = *change.date;
  if (change.kind) edited->kind = *change.kind;
  if (change.amount) edited->amount = change.amount;
  if (change.description) edited->description = *change.description;
  if (change.category) edited->category = keepCategory(database_.get(), *change.category, id);
  const bool corrected =
      edited->state == LedgerEntry::State::setAside && impossibleValue(*edited).empty();
  if (corrected) edited->state = LedgerEntry::State::review;
  Statement update(database_.get(), R"(
    UPDATE transactions SET date = ?, kind = ?, minor_units = ?, currency = ?, description = ?,
      category = ?, state = ?, edited = 1 WHERE id = ?)");
  update.bind(edited->date).bind(kindText(edited->kind));
  update.bindIfPresent(edited->amount ? std::optional(edited->amount->minorUnits) : std::nullopt);
  update.bind(edited->amount ? std::string_view(edited->amount->currency) : "");
  update.bind(edited->description).bind(edited->category).bind(stateText(edited->state)).bind(id);
  run(update);
  markLikenessAgain(id);
  holdCorrection(*edited, change);
  require(transaction.commit());
  return true;
}

std::optional<BookedSum> Book::accept(std::int64_t id, const std::string& currency) {
  Transaction transaction(database_.get());
  require(transaction.code());
  const auto accepted = entry(id);
  if (!accepted || !accepted->amount || !isBookable(*accepted->amount)) return std::nullopt;
  if (accepted->state == LedgerEntry::State::setAside) return std::nullopt;
  BookedSum sum{*accepted->amount};
  if (accepted->state == LedgerEntry::State::review && sum.amount.currency != currency) {
    if (const auto set = rate(sum.amount.currency)) {
      const auto converted = set->convert(sum.amount, currency);
      if (!converted) return std::nullopt;
      sum = {*converted, set->text()};
    }
  }
  Statement update(database_.get(), R"(
    UPDATE transactions SET state = 'booked', minor_units = ?, currency = ? WHERE id = ?)");
  run(update.bind(sum.amount.minorUnits).bind(sum.amount.currency).bind(id));
  markLikenessAgain(id);
  require(transaction.commit());
  return sum;
}

bool Book::remove(std::int64_t id) {
  {
    Transaction transaction(database_.get());
    require(transaction.code());
    Statement removal(database_.get(), "DELETE FROM transactions WHERE id = ? RETURNING id");
    if (!next(removal.bind(id))) return false;
    run(removal);
    markLikenessAgain(id);
    linux_platform::oweErasure(database_.get());
    require(transaction.commit());
  }
  linux_platform::eraseReplacedText(database_.get());
  return true;
}

std::int64_t Book::forgetTexts() {
  std::int64_t count = 0;
  {
    Transaction transaction(database_.get());
    require(transaction.code());
    Statement counting(database_.get(), "SELECT count(text) FROM transactions");
    if (next(counting)) count = counting.integer(0);
    linux_platform::oweErasure(database_.get());
    Statement update(database_.get(), "UPDATE transactions SET text = NULL WHERE text IS NOT NULL");
    run(update);
    require(transaction.commit());
  }
  linux_platform::eraseReplacedText(database_.get());
  return count;
}

void Book::setRate(const std::string& currency, const Rate& rate) {
  Statement upsert(database_.get(), "INSERT OR REPLACE INTO rates VALUES (?, ?)");
  const std::string text = rate.text();
  run(upsert.bind(currency).bind(text));
}

std::optional<Rate> Book::rate(const std::string& currency) const {
  Statement query(database_.get(), "SELECT rate FROM rates WHERE currency = ?");
  if (!next(query.bind(currency))) return std::nullopt;
  return Rate::fromText(query.text(0));
}

bool Book::removeRate(const std::string& currency) {
  Statement removal(database_.get(), "DELETE FROM rates WHERE currency = ? RETURNING currency");
  if (!next(removal.bind(currency))) return false;
  run(removal);
  return true;
}

std::vector<std::pair<std::string, std::string>> Book::rates() const {
  Statement query(database_.get(), "SELECT currency, rate FROM rates ORDER BY currency");
  std::vector<std::pair<std::string, std::string>> found;
  while (next(query)) found.emplace_back(query.text(0), query.text(1));
  return found;
}

}  // namespace kivo::ledger
