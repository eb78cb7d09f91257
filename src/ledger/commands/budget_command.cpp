#include "ledger/commands/budget_command.h"

#include <string>

#include "book/book_command.h"
#include "book/current_day.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "overview/budget_view.h"
#include "overview/month_summary.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using money::Month;

namespace {

namespace BudgetView = overview::BudgetView;
using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

void showBudgets(const GivenParameters& parameters) {
  const Month month = givenMonth(parameters).value_or(book::currentMonth());
  const money::CurrencyCode currency = requiredBookCurrency();
  withBook([&](const Book& book) {
    std::vector<overview::BudgetFigures> budgets;
    book.atOneMoment([&] {
      tellSetAside(book);
      budgets = overview::summarize(book, month, currency).budgets;
    });
    if (parameters.contains("--json")) {
      const std::string text = platform::JSONEncoder::arrayText(BudgetView::json(budgets));
      return print(linux_platform::jsonForStandardOutput(text) + "\n");
    }
    if (budgets.empty()) return print("No budget is set for " + month.name() + ".\n");
    print(month.name() + ", in " + currency.text() + "\n" +
          BudgetView::table(budgets, linux_platform::screenWidth()));
  });
}

void requireKnown(const Book& book, const std::string& category) {
  if (book.knowsCategory(category)) return;
  throw CommandFailure("no payment is of the category \"" + escapedControls(category) + "\"; " +
                       book::bookCommand("summary") + " shows the categories");
}

void removeBudget(Book& book, const std::string& category, const std::optional<Month>& month) {
  if (book.removeBudget(category, month)) return;
  throw CommandFailure("there is no budget for \"" + escapedControls(category) + "\"" +
                       (month ? " for " + month->text() + " alone" : ""));
}

void budget(const GivenParameters& parameters) {
  const auto category = givenText(parameters, "CATEGORY");
  const auto limit = given(parameters, "LIMIT");
  const auto month = givenMonth(parameters);
  const bool removes = parameters.contains("--remove");
  if (!category) {
    if (removes) throw BadUsage("name the category of the budget");
    return showBudgets(parameters);
  }
  if (removes == limit.has_value()) throw BadUsage("give either LIMIT or --remove");
  if (parameters.contains("--json")) throw BadUsage("--json only shows budgets");
  const money::CurrencyCode currency = requiredBookCurrency();
  const auto sum = limit ? std::optional(sumFrom(*limit, currency, "LIMIT")) : std::nullopt;
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("budget", parameters);
    book.asCommand(command, [&] {
      if (!sum) return removeBudget(book, *category, month);
      requireKnown(book, *category);
      book.setBudget({*category, *sum, month});
    });
  });
}

}  // namespace

linux_platform::Command budgetCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {"budget",
          "Show or set what a month may cost by category",
          {{"CATEGORY", "The category, as Groceries", optional},
           {"LIMIT", "The most to spend in a month, as 3000", optional},
           {"--month", "Show this month, or set it for this month alone", optional},
           {"--remove", "Have no budget for it, or none for that month", ParameterKind::flag},
           {"--json", "Print JSON", ParameterKind::flag}},
          budget};
}

}  // namespace kivo::ledger
