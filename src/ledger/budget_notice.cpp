#include "ledger/budget_notice.h"

#include <algorithm>
#include <vector>

#include "book/current_day.h"
#include "overview/month_summary.h"
#include "overview/sum_format.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;
using overview::BudgetFigures;

namespace {

bool hasBudget(const Book& book, const std::string& category, const money::Month& month) {
  return std::ranges::any_of(
      book.budgets(month), [&](const book::Budget& budget) { return budget.category == category; });
}

// In percent, 0 when none is passed.
int passedShare(const BudgetFigures& figures) {
  if (figures.percent() >= 100) return 100;
  return figures.percent() >= 80 ? 80 : 0;
}

BudgetNotice noticeOf(const BudgetFigures& figures) {
  const overview::SumFormat sums(figures.amount.currency);
  return {.title = figures.category,
          .body = std::to_string(figures.percent()) +
                  " % of this month's budget is spent: " + sums.plain(figures.spent) + " of " +
                  sums.plain(figures.amount) + " " + figures.amount.currency.text()};
}

}  // namespace

std::optional<BudgetNotice> takeBudgetNotice(Book& book, const LedgerEntry& entry,
                                             const money::CurrencyCode& currency) {
  const money::Month month = book::currentMonth();
  const bool isSpent =
      entry.state == LedgerEntry::State::booked && entry.kind == money::Kind::expense;
  if (!isSpent || entry.date.month() != month || !hasBudget(book, entry.category, month)) {
    return std::nullopt;
  }
  std::vector<BudgetFigures> budgets;
  book.atOneMoment([&] { budgets = overview::summarize(book, month, currency).budgets; });
  for (const BudgetFigures& figures : budgets) {
    if (figures.category != entry.category) continue;
    const int passed = passedShare(figures);
    if (passed == 0 || !book.notePassedBudget(figures.category, month, passed)) continue;
    return noticeOf(figures);
  }
  return std::nullopt;
}

}  // namespace kivo::ledger
