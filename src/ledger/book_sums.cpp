// Book::sums and Book::reviewCount.
#include "ledger/book.h"
#include "ledger/book_file.h"

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

}  // namespace

std::vector<GroupSum> Book::sums(Grouping grouping, const std::string& from,
                                 const std::string& to) const {
  const std::string group = expressionFor(grouping);
  const std::string sql = "SELECT min(" + group +
                          "), kind, sum(minor_units), currency, count(*) FROM transactions "
                          "WHERE state = 'booked' AND date BETWEEN ? AND ? GROUP BY " +
                          group + " COLLATE NOCASE, kind, currency";
  Statement query(database_.get(), sql.c_str());
  query.bind(from).bind(to);
  std::vector<GroupSum> found;
  while (query.step()) {
    found.push_back({.group = query.text(0),
                     .kind = kindFromText(query.text(1)).value_or(Kind::expense),
                     .sum = {query.integer(2), query.text(3)},
                     .transactions = query.integer(4)});
  }
  constexpr int anyError = 1;  // SQLite's code for a sum beyond 64 bits, which has none of its own
  if (query.code() == anyError) throw BookFailure("its amounts are too large to be added up");
  require(query.code());
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
