#include "ledger/commands/overview_commands.h"

#include <filesystem>
#include <functional>
#include <string>

#include "book/current_day.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/written_file.h"
#include "ledger/report_file.h"
#include "overview/report_figures.h"
#include "overview/report_page.h"
#include "overview/summary_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using book::currentMonth;
using money::Month;
using overview::MonthSummary;
using overview::readReport;
using overview::reportPage;
using overview::summarize;

namespace {

namespace SummaryView = overview::SummaryView;
using linux_platform::BadUsage;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

// Calls `use` with a snapshot of the book, the given or current month and the book's currency.
void withMonth(const GivenParameters& parameters,
               const std::function<void(const Book&, const Month& month,
                                        const money::CurrencyCode& currency)>& use) {
  const Month month = givenMonth(parameters).value_or(currentMonth());
  const money::CurrencyCode currency = requiredBookCurrency();
  withBook([&](const Book& book) {
    book.atOneMoment([&] {
      tellSetAside(book);
      use(book, month, currency);
    });
  });
}

void summary(const GivenParameters& parameters) {
  withMonth(parameters, [&](const Book& book, const auto& month, const auto& currency) {
    const MonthSummary figures = summarize(book, month, currency);
    if (parameters.contains("--json")) {
      return print(linux_platform::jsonForStandardOutput(SummaryView::json(figures).text()) + "\n");
    }
    SummaryView::Look look;
    look.width = linux_platform::onTerminal() ? linux_platform::screenWidth() : look.width;
    if (linux_platform::terminalShowsStyles()) look.style = SummaryView::Look::Style::coloured;
    print(SummaryView::text(figures, currentMonth(), look));
  });
}

std::filesystem::path reportPlace(const GivenParameters& parameters) {
  if (const auto output = parameters.find("--output"); output != parameters.end()) {
    std::filesystem::path place = output->second;
    if (place.filename().empty()) throw invalid("--output", output->second, "the name of a file");
    return place;
  }
  if (const auto usual = ReportFile::usualPlace()) return *usual;
  throw BadUsage("XDG_RUNTIME_DIR is not set; name a file by --output");
}

void report(const GivenParameters& parameters) {
  const std::filesystem::path path = reportPlace(parameters);
  std::string page;
  withMonth(parameters, [&](const Book& book, const auto& month, const auto& currency) {
    page = reportPage(readReport(book, month, currency));
  });
  writeFile(path, page);
  print(linux_platform::forStandardOutput(path.string()) + "\n");
  if (!parameters.contains("--no-open")) ReportFile::open(path);
}

}  // namespace

std::vector<linux_platform::Command> overviewCommands() {
  const linux_platform::CommandParameter month{
      "--month", "The month, as 2026-11; this month when not given", ParameterKind::optional};
  return {
      {"summary",
       "Show a month's sums beside the month before",
       {month, {"--json", "Print JSON", ParameterKind::flag}},
       summary},
      {"report",
       "Open a page about a month and the year before it",
       {month,
        {"--output", "The file to write; kivo/report.html in XDG_RUNTIME_DIR when not given",
         ParameterKind::optional},
        {"--no-open", "Only write it", ParameterKind::flag}},
       report},
  };
}

}  // namespace kivo::ledger
