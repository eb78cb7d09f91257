// The budgets of the book, as rows of their table, and what was said of them.
#include <algorithm>

#include "book/book_categories.h"
#include "book/book_state.h"
#include "book/database.h"
#include "names/name_fold.h"
#include "names/standard_categories.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {

using money::Month;

namespace {

// Before all months, since it holds for all of them.
std::string textOf(const std::optional<Month>& month) { return month ? month->text() : ""; }

std::string foldedCategory(Database& database, const std::string& category) {
  return names::foldedName(spelledCategory(database, category));
}

// The budget of a category: that of one month, or all.
struct ChosenBudgets {
  ChosenBudgets(Database& database, const std::string& category,
                const std::optional<Month>& ofMonth)
      : folded(foldedCategory(database, category)),
        month(textOf(ofMonth)),
        condition(std::string("folded = ? AND month ") + (ofMonth ? "= ?" : ">= ?")) {}
  Statement& bindTo(Statement& statement) const { return statement.bind(folded).bind(month); }

  std::string folded;
  std::string month;
  std::string condition;
};

}  // namespace

std::vector<std::string> Book::categories() const { return knownCategories(file_->database); }

bool Book::knowsCategory(const std::string& category) const {
  const std::string folded = foldedCategory(file_->database, category);
  const bool isStandard = std::ranges::any_of(names::standardCategories, [&](const auto standard) {
    return names::foldedName(standard) == folded;
  });
  if (isStandard) return true;
  Statement ofRules(file_->database, "SELECT category FROM rules WHERE category IS NOT NULL");
  while (next(ofRules)) {
    if (names::foldedName(ofRules.text(0)) == folded) return true;
  }
  Statement ofEntries(file_->database, "SELECT 1 FROM categories WHERE folded = ?");
  return next(ofEntries.bind(folded));
}

void Book::setBudget(const Budget& budget) {
  inOneStep([&] {
    const std::string category = spelledCategory(file_->database, budget.category);
    const std::string folded = names::foldedName(category);
    const std::string month = textOf(budget.month);
    const std::string currency = budget.amount.currency.text();
    file_->notes.budgetsOf(folded);
    Statement removal(file_->database, "DELETE FROM budgets WHERE folded = ? AND month = ?");
    run(removal.bind(folded).bind(month));
    Statement insertion(file_->database, R"(
      INSERT INTO budgets (folded, month, category, minor_units, currency)
        VALUES (?, ?, ?, ?, ?))");
    insertion.bind(folded).bind(month).bind(category).bind(budget.amount.minorUnits).bind(currency);
    run(insertion);
  });
}

bool Book::removeBudget(const std::string& category, const std::optional<Month>& month) {
  bool found = false;
  inOneStep([&] {
    const ChosenBudgets chosen(file_->database, category, month);
    Statement query(file_->database, "SELECT 1 FROM budgets WHERE " + chosen.condition);
    found = next(chosen.bindTo(query));
    if (!found) return;
    query.reset();
    file_->notes.budgetsOf(chosen.folded);
    Statement removal(file_->database, "DELETE FROM budgets WHERE " + chosen.condition);
    run(chosen.bindTo(removal));
  });
  return found;
}

std::vector<Budget> Book::budgets(const Month& month) const {
  const std::string text = month.text();
  Statement query(file_->database, R"(
    SELECT category, minor_units, currency, month FROM budgets WHERE month = ?1 OR (month = '' AND
      NOT EXISTS (SELECT 1 FROM budgets AS own WHERE own.folded = budgets.folded AND own.month = ?1))
    ORDER BY folded)");
  query.bind(text);
  std::vector<Budget> found;
  while (next(query)) {
    const auto currency = money::CurrencyCode::fromText(query.text(2));
    if (!currency) continue;
    const money::Money amount{query.integer(1), *currency};
    if (!isBookable(amount)) continue;
    found.push_back({.category = platform::repairedUtf8(query.text(0)),
                     .amount = amount,
                     .month = Month::fromText(query.text(3))});
  }
  for (Budget& budget : found) {
    budget.category = spelledCategory(file_->database, budget.category);
  }
  return found;
}

bool Book::notePassedBudget(const std::string& category, const Month& month, int percent) {
  bool isNew = false;
  inOneStep([&] {
    const std::string folded = foldedCategory(file_->database, category);
    const std::string text = month.text();
    Statement known(file_->database,
                    "SELECT percent FROM passed_budgets WHERE folded = ? AND month = ?");
    isNew = !next(known.bind(folded).bind(text)) || known.integer(0) < percent;
    if (!isNew) return;
    known.reset();
    Statement removal(file_->database, "DELETE FROM passed_budgets WHERE folded = ? AND month = ?");
    run(removal.bind(folded).bind(text));
    Statement insertion(file_->database,
                        "INSERT INTO passed_budgets (folded, month, percent) VALUES (?, ?, ?)");
    run(insertion.bind(folded).bind(text).bind(std::int64_t{percent}));
  });
  return isNew;
}

}  // namespace kivo::book
