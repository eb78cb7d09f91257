#include "book/book_rates.h"

#include <string>

#include "book/database.h"

namespace kivo::book {
namespace {

// Sorts before all days.
std::string textOf(const std::optional<money::Day>& from) { return from ? from->text() : ""; }

// The rates of a currency: that of one day, or all.
struct Chosen {
  Chosen(const money::CurrencyCode& ofCurrency, const std::optional<money::Day>& from)
      : currency(ofCurrency.text()),
        day(textOf(from)),
        condition(std::string("currency = ? AND first_day ") + (from ? "= ?" : ">= ?")) {}
  Statement& bindTo(Statement& statement) const { return statement.bind(currency).bind(day); }

  std::string currency;
  std::string day;
  std::string condition;
};

}  // namespace

void setRate(Database& database, const money::CurrencyCode& currency, const money::Rate& rate,
             const std::optional<money::Day>& from) {
  const std::string code = currency.text();
  const std::string day = textOf(from);
  const std::string text = rate.text();
  Statement removal(database, "DELETE FROM rates WHERE currency = ? AND first_day = ?");
  run(removal.bind(code).bind(day));
  Statement insertion(database, "INSERT INTO rates (currency, first_day, rate) VALUES (?, ?, ?)");
  run(insertion.bind(code).bind(day).bind(text));
}

std::optional<money::Rate> rateOf(Database& database, const money::CurrencyCode& currency,
                                  const money::Day& day) {
  const std::string code = currency.text();
  const std::string last = day.text();
  Statement query(database, R"(
    SELECT rate FROM rates WHERE currency = ? AND first_day <= ? ORDER BY first_day DESC LIMIT 1)");
  if (!next(query.bind(code).bind(last))) return std::nullopt;
  return money::Rate::fromText(query.text(0));
}

bool hasRate(Database& database, const money::CurrencyCode& currency,
             const std::optional<money::Day>& from) {
  const Chosen chosen(currency, from);
  Statement query(database, "SELECT 1 FROM rates WHERE " + chosen.condition);
  return next(chosen.bindTo(query));
}

void removeRates(Database& database, const money::CurrencyCode& currency,
                 const std::optional<money::Day>& from) {
  const Chosen chosen(currency, from);
  Statement removal(database, "DELETE FROM rates WHERE " + chosen.condition);
  run(chosen.bindTo(removal));
}

std::vector<StoredRate> allRates(Database& database) {
  Statement query(database,
                  "SELECT currency, first_day, rate FROM rates ORDER BY currency, first_day");
  std::vector<StoredRate> found;
  while (next(query)) found.push_back({query.text(0), query.text(1), query.text(2)});
  return found;
}

}  // namespace kivo::book
