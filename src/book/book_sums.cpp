#include "book/book_sums.h"

#include <limits>

#include "book/book_file.h"
#include "money/calendar_day.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {

using money::isDay;
using money::isMonth;
using money::kindFromText;
using money::largestSum;

namespace {

using linux_platform::Statement;

// The group of a transaction.
const char* expressionFor(Grouping grouping) {
  switch (grouping) {
    case Grouping::month:
      return "substr(date, 1, 7)";
    case Grouping::day:
      return "date";
    case Grouping::category:
      return "category";
    case Grouping::description:
      return "description";
  }
  return "";
}

// A damaged file may hold any bytes.
bool isPossible(Grouping grouping, std::string_view group) {
  if (grouping == Grouping::month) return isMonth(group);
  return grouping != Grouping::day || isDay(group);
}

}  // namespace

Counted countedBetween(sqlite3* database, const std::string& from, const std::string& to) {
  Counted counted;
  // Multiples of 1024, so that their sum fits.
  Statement adding(database, R"(
    SELECT count(*), sum((minor_units >> 10) + 1) FROM transactions
    WHERE state = 'booked' AND date BETWEEN ? AND ? AND minor_units BETWEEN 1 AND ?)");
  adding.bind(from).bind(to).bind(largestSum);
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  if (next(adding) && adding.integer(1) > most >> 10) counted.largest = most / adding.integer(0);
  Statement query(database, R"(
    SELECT id FROM transactions WHERE state = 'booked' AND date BETWEEN ? AND ?
      AND (minor_units BETWEEN 1 AND ?) IS NOT TRUE ORDER BY id)");
  query.bind(from).bind(to).bind(counted.largest);
  while (next(query)) counted.leftOut.push_back(query.integer(0));
  return counted;
}

std::vector<GroupSum> sumsBetween(sqlite3* database, Grouping grouping, const std::string& from,
                                  const std::string& to, std::int64_t largest) {
  const std::string group = expressionFor(grouping);
  const std::string sql = "SELECT min(" + group +
                          "), kind, sum(minor_units), currency, count(*) FROM transactions "
                          "WHERE state = 'booked' AND date BETWEEN ? AND ? AND "
                          "minor_units BETWEEN 1 AND ? GROUP BY " +
                          group + " COLLATE NOCASE, kind, currency";
  Statement query(database, sql.c_str());
  query.bind(from).bind(to).bind(largest);
  std::vector<GroupSum> found;
  while (next(query)) {
    const std::string name = platform::repairedUtf8(query.text(0));
    const auto kind = kindFromText(query.text(1));
    if (!kind || !isPossible(grouping, name)) continue;
    found.push_back({.group = name,
                     .kind = *kind,
                     .sum = {query.integer(2), platform::repairedUtf8(query.text(3))},
                     .transactions = query.integer(4)});
  }
  return found;
}

}  // namespace kivo::book
