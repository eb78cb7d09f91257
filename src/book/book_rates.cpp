#include "book/book_rates.h"

#include "book/book_file.h"

namespace kivo::book {

using linux_platform::Statement;

void setRate(sqlite3* database, const money::CurrencyCode& currency, const money::Rate& rate) {
  const std::string code = currency.text();
  Statement upsert(database, "INSERT OR REPLACE INTO rates VALUES (?, ?)");
  const std::string text = rate.text();
  run(upsert.bind(code).bind(text));
}

std::optional<money::Rate> rateOf(sqlite3* database, const money::CurrencyCode& currency) {
  const std::string code = currency.text();
  Statement query(database, "SELECT rate FROM rates WHERE currency = ?");
  if (!next(query.bind(code))) return std::nullopt;
  return money::Rate::fromText(query.text(0));
}

bool hasRate(sqlite3* database, const money::CurrencyCode& currency) {
  const std::string code = currency.text();
  Statement query(database, "SELECT 1 FROM rates WHERE currency = ?");
  return next(query.bind(code));
}

void removeRate(sqlite3* database, const money::CurrencyCode& currency) {
  const std::string code = currency.text();
  Statement removal(database, "DELETE FROM rates WHERE currency = ?");
  run(removal.bind(code));
}

std::vector<std::pair<std::string, std::string>> allRates(sqlite3* database) {
  Statement query(database, "SELECT currency, rate FROM rates ORDER BY currency");
  std::vector<std::pair<std::string, std::string>> found;
  while (next(query)) found.emplace_back(query.text(0), query.text(1));
  return found;
}

}  // namespace kivo::book
