// Book::counted, Book::sums and Book::reviewCount.
#include <limits>

#include "ledger/book.h"
#include "ledger/book_file.h"
#include "ledger/calendar_day.h"
#include "platform/foundation/utf8.h"

namespace kivo::ledger {
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

Counted Book::counted(const std::string& from, const std::string& to) const {
  Counted counted;
  // Multiples of 1024, so that their sum fits.
  Statement adding(database_.get(), R"(
    SELECT count(*), sum((minor_units >> 10) + 1) FROM transactions
    WHERE state = 'booked' AND date BETWEEN ? AND ? AND minor_units BETWEEN 1 AND ?)");
  adding.bind(from).bind(to).bind(largestSum);
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  if (next(adding) && adding.integer(1) > most >> 10) counted.largest = most / adding.integer(0);
  Statement query(database_.get(), R"(
    SELECT id FROM transactions WHERE state = 'booked' AND date BETWEEN ? AND ?
      AND (minor_units BETWEEN 1 AND ?) IS NOT TRUE ORDER BY id)");
  query.bind(from).bind(to).bind(counted.largest);
  while (next(query)) counted.leftOut.push_back(query.integer(0));
  return counted;
}

std::vector<GroupSum> Book::sums(Grouping grouping, const std::string& from, const std::string& to,
                                 std::int64_t largest) const {
  const std::string group = expressionFor(grouping);
  const std::string sql = "SELECT min(" + group +
                          "), kind, sum(minor_units), currency, count(*) FROM transactions "
                          "WHERE state = 'booked' AND date BETWEEN ? AND ? AND "
                          "minor_units BETWEEN 1 AND ? GROUP BY " +
                          group + " COLLATE NOCASE, kind, currency";
  Statement query(database_.get(), sql.c_str());
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

std::int64_t Book::reviewCount() const {
  Statement query(database_.get(), "SELECT count(*) FROM transactions WHERE state = 'review'");
  return next(query) ? query.integer(0) : 0;
}

linux_platform::Transaction Book::snapshot() const {
  return linux_platform::Transaction(database_.get(), "BEGIN");
}

}  // namespace kivo::ledger
