#include "ledger/overview_commands.h"

#include <string>

#include "ledger/calendar_day.h"
#include "ledger/command_options.h"
#include "ledger/ledger_terminal.h"
#include "ledger/summary_view.h"
#include "platform/linux/terminal/terminal_text.h"

namespace kivo::ledger {
namespace {

using linux_platform::GivenParameters;
using ParameterKind = linux_platform::CommandParameter::Kind;

// Hands the figures of the month that was asked for to `use` and returns what that returns.
int withMonth(const GivenParameters& parameters,
              const std::function<int(const Book&, const MonthSummary&)>& use) {
  const std::string month = given(parameters, "--month").value_or(currentMonth());
  if (!isMonth(month)) return failFor("--month", month, "a month such as 2026-11");
  const auto currency = bookCurrency();
  if (!currency) return exitFailure;
  return withBook([&](Book& book) { return use(book, summarize(book, month, *currency)); });
}

int summary(const GivenParameters& parameters) {
  return withMonth(parameters, [](const Book&, const MonthSummary& figures) {
    return print(linux_platform::jsonForStandardOutput(SummaryView::json(figures).text()) + "\n");
  });
}

}  // namespace

std::vector<linux_platform::Command> overviewCommands() {
  const linux_platform::CommandParameter month{
      "--month", "The month, as 2026-11; this month when not given", ParameterKind::optional};
  return {
      {"summary",
       "Show what a month's money went to, beside the month before",
       {month, {"--json", "Print JSON", ParameterKind::flag}},
       summary},
  };
}

}  // namespace kivo::ledger
