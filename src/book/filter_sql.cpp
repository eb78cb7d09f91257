#include "book/filter_sql.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>

#include "book/book_categories.h"
#include "book/database.h"

namespace kivo::book {
namespace {

using money::CurrencyCode;
using money::nearestSums;

// The LIKE pattern for texts that contain `part`.
std::string patternFor(const std::string& part) {
  std::string pattern = "%";
  for (const char c : part) {
    if (c == '%' || c == '_' || c == '\\') pattern += '\\';
    pattern += c;
  }
  return pattern + "%";
}

// Minor units from `first` to `last`; none when `last` is less.
struct Units {
  std::int64_t first = 0;
  std::int64_t last = std::numeric_limits<std::int64_t>::max();
};
constexpr Units none{.first = 1, .last = 0};

// The amounts of a currency that are exactly `text`.
Units exactly(const std::string& text, const CurrencyCode& currency) {
  const auto sums = nearestSums(text, currency);
  return sums && sums->atMost == sums->atLeast
             ? Units{sums->atMost.minorUnits, sums->atMost.minorUnits}
             : none;
}

// The amounts of a currency that `filter` leaves. A bound that is not read is above all amounts.
Units within(const EntryFilter& filter, const CurrencyCode& currency) {
  Units units;
  if (!filter.least.empty()) {
    const auto least = nearestSums(filter.least, currency);
    if (!least) return none;
    units.first = least->atLeast.minorUnits;
  }
  if (!filter.largest.empty()) {
    const auto largest = nearestSums(filter.largest, currency);
    if (largest) units.last = largest->atMost.minorUnits;
  }
  return units;
}

// The condition that an amount is among `unitsIn` its currency. Codes and numbers need no quoting.
std::string amountCondition(Database& database,
                            const std::function<Units(const CurrencyCode&)>& unitsIn) {
  Statement query(database, "SELECT DISTINCT currency FROM transactions");
  std::string condition;
  while (next(query)) {
    const auto currency = CurrencyCode::fromText(query.text(0));
    if (!currency) continue;
    const auto [first, last] = unitsIn(*currency);
    if (last < first) continue;
    condition += (condition.empty() ? "" : " OR ") + ("(currency = '" + currency->text()) +
                 "' AND minor_units BETWEEN " + std::to_string(first) + " AND " +
                 std::to_string(last) + ")";
  }
  return condition.empty() ? "FALSE" : "(" + condition + ")";
}

}  // namespace

FilterSql sqlOf(Database& database, const EntryFilter& filter) {
  FilterSql sql;
  const auto add = [&sql](const std::string& condition, std::string value) {
    sql.condition += (sql.condition.empty() ? "" : " AND ") + condition;
    sql.values.push_back(std::move(value));
  };
  add("state = ?", stateText(filter.state));
  if (filter.from) add("date >= ?", filter.from->text());
  if (filter.to) add("date <= ?", filter.to->text());
  if (filter.kind) add("kind = ?", kindText(*filter.kind));
  if (!filter.account.empty()) {
    add("(account = ?", filter.account);
    sql.condition += " OR account IN (SELECT digits FROM accounts WHERE lower(name) = lower(?)))";
    sql.values.push_back(filter.account);
  }
  if (!filter.category.empty()) {
    add("category = ?", spelledCategory(database, filter.category));
  }
  if (!filter.search.empty()) {
    const auto units = [&](const CurrencyCode& currency) {
      return exactly(filter.search, currency);
    };
    // On its own line each, since no search holds a line's end. ASCII letters become small ones.
    add(R"((lower(description || '
' || category || '
' || account || '
' || reference) LIKE lower(?) ESCAPE '\' OR )" +
            amountCondition(database, units) + ")",
        patternFor(filter.search));
  }
  if (!filter.least.empty() || !filter.largest.empty()) {
    sql.condition += " AND " + amountCondition(database, [&](const CurrencyCode& currency) {
                       return within(filter, currency);
                     });
  }
  return sql;
}

}  // namespace kivo::book
