#include "book/book_sums.h"

#include <limits>
#include <optional>
#include <string>
#include <unordered_map>

#include "book/book_file.h"
#include "names/payee_key.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

using linux_platform::Statement;

// The sums of the groups that `expression` makes of a row. `groupOf` reads the text of a group, and
// returns nullopt where a damaged file holds none.
template <typename GroupOf>
auto sumsBy(sqlite3* database, const std::string& expression, const SumScope& scope,
            GroupOf groupOf) {
  const std::string sql = "SELECT min(" + expression + R"(), counts_as,
      sum(CASE WHEN is_second THEN 0 WHEN is_refund THEN -minor_units ELSE minor_units END),
      currency, count(*), sum(CASE WHEN is_refund THEN minor_units ELSE 0 END), sum(is_refund)
    FROM (
      SELECT *, counterpart IS NOT NULL AND incoming AS is_second,
        counterpart IS NULL AND refund AND kind = 'income' AS is_refund,
        CASE WHEN counterpart IS NOT NULL THEN 'transfer'
          WHEN refund AND kind = 'income' THEN 'expense' ELSE kind END AS counts_as
      FROM transactions
      WHERE state = 'booked' AND date BETWEEN ? AND ? AND minor_units BETWEEN 1 AND ?)
    GROUP BY )" + expression +
                          " COLLATE NOCASE, counts_as, currency";
  Statement query(database, sql.c_str());
  const std::string first = scope.period.first.text();
  const std::string last = scope.period.last.text();
  query.bind(first).bind(last).bind(scope.largest);
  using Group = typename decltype(groupOf(std::string()))::value_type;
  std::vector<GroupSum<Group>> found;
  while (next(query)) {
    const auto group = groupOf(platform::repairedUtf8(query.text(0)));
    const auto kind = money::kindFromText(query.text(1));
    const auto currency = money::CurrencyCode::fromText(query.text(3));
    if (!kind || !group || !currency) continue;
    found.push_back({.group = *group,
                     .kind = *kind,
                     .sum = {query.integer(2), *currency},
                     .transactions = query.integer(4),
                     .refunded = {query.integer(5), *currency},
                     .refunds = query.integer(6)});
  }
  return found;
}

}  // namespace

Counted countedIn(sqlite3* database, const money::Period& period) {
  const std::string first = period.first.text();
  const std::string last = period.last.text();
  Counted counted;
  // Multiples of 1024, so that their sum fits.
  Statement adding(database, R"(
    SELECT count(*), sum((minor_units >> 10) + 1) FROM transactions
    WHERE state = 'booked' AND date BETWEEN ? AND ? AND minor_units BETWEEN 1 AND ?)");
  adding.bind(first).bind(last).bind(money::largestSum);
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  if (next(adding) && adding.integer(1) > most >> 10) counted.largest = most / adding.integer(0);
  Statement query(database, R"(
    SELECT id FROM transactions WHERE state = 'booked' AND date BETWEEN ? AND ?
      AND (minor_units BETWEEN 1 AND ?) IS NOT TRUE ORDER BY id)");
  query.bind(first).bind(last).bind(counted.largest);
  while (next(query)) counted.leftOut.push_back(query.integer(0));
  return counted;
}

std::vector<GroupSum<money::Month>> sumsByMonth(sqlite3* database, const SumScope& scope) {
  return sumsBy(database, "substr(date, 1, 7)", scope, money::Month::fromText);
}

std::vector<GroupSum<money::Day>> sumsByDay(sqlite3* database, const SumScope& scope) {
  return sumsBy(database, "date", scope, money::Day::fromText);
}

std::vector<GroupSum<std::string>> sumsByName(sqlite3* database, Names names,
                                              const SumScope& scope) {
  return sumsBy(database, names == Names::category ? "category" : "description", scope,
                [](std::string name) { return std::optional(std::move(name)); });
}

std::vector<PayeeExpense> expensesByDay(sqlite3* database, const money::Period& period) {
  Statement query(database, R"(
    SELECT id, date, minor_units, currency, folded_payee,
      CASE WHEN folded_payee = '' THEN description ELSE '' END
    FROM transactions WHERE state = 'booked' AND date BETWEEN ? AND ? AND kind = 'expense' AND
      counterpart IS NULL AND minor_units BETWEEN 1 AND ? ORDER BY date, id)");
  const std::string first = period.first.text();
  const std::string last = period.last.text();
  query.bind(first).bind(last).bind(money::largestSum);
  // Folded once each.
  std::unordered_map<std::string, std::string> keys;
  const auto keyOf = [&keys](const std::string& description) {
    const auto [found, isNew] = keys.try_emplace(description);
    if (isNew) found->second = names::PayeeKey(description).text();
    return found->second;
  };
  std::vector<PayeeExpense> found;
  while (next(query)) {
    const auto date = money::Day::fromText(query.text(1));
    const auto currency = money::CurrencyCode::fromText(query.text(3));
    if (!date || !currency) continue;
    const std::string payee = query.text(4);
    found.push_back({.id = query.integer(0),
                     .date = *date,
                     .amount = {query.integer(2), *currency},
                     .payee = payee.empty() ? keyOf(query.text(5)) : payee});
  }
  return found;
}

}  // namespace kivo::book
