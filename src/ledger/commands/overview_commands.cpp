#include "ledger/commands/overview_commands.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "book/current_day.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/written_file.h"
#include "ledger/report_file.h"
#include "overview/report_figures.h"
#include "overview/report_page.h"
#include "overview/summary_view.h"
#include "overview/year_page.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using book::currentMonth;
using money::Month;
using money::Year;
using overview::MonthSummary;
using overview::readReport;
using overview::reportPage;
using overview::summarize;
using overview::yearPage;
using overview::YearSummary;

namespace {

namespace SummaryView = overview::SummaryView;
using linux_platform::BadUsage;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

// Calls `use` with a snapshot of the book and the book's currency.
void withSnapshot(
    const std::function<void(const Book&, const money::CurrencyCode& currency)>& use) {
  const money::CurrencyCode currency = requiredBookCurrency();
  withBook([&](const Book& book) {
    book.atOneMoment([&] {
      tellSetAside(book);
      use(book, currency);
    });
  });
}

// Returns the value of --year; absent when it was not given.
std::optional<Year> givenYear(const GivenParameters& parameters) {
  const auto text = given(parameters, "--year");
  if (!text) return std::nullopt;
  const auto year = Year::fromText(*text);
  if (!year) throw invalid("--year", *text, "a year such as 2026");
  if (parameters.contains("--month")) throw BadUsage("give --month or --year, not both");
  return year;
}

Month shownMonth(const GivenParameters& parameters) {
  return givenMonth(parameters).value_or(currentMonth());
}

SummaryView::Look terminalLook() {
  SummaryView::Look look;
  look.width = linux_platform::onTerminal() ? linux_platform::screenWidth() : look.width;
  if (linux_platform::terminalShowsStyles()) look.style = SummaryView::Look::Style::coloured;
  return look;
}

void printJson(const platform::JSONEncoder& object) {
  print(linux_platform::jsonForStandardOutput(object.text()) + "\n");
}

void summary(const GivenParameters& parameters) {
  const auto year = givenYear(parameters);
  const Month month = shownMonth(parameters);
  const bool asJson = parameters.contains("--json");
  withSnapshot([&](const Book& book, const auto& currency) {
    if (year) {
      const YearSummary figures = summarize(book, *year, currency);
      if (asJson) return printJson(SummaryView::json(figures));
      return print(SummaryView::text(figures, terminalLook()));
    }
    MonthSummary figures = summarize(book, month, currency);
    if (asJson) return printJson(SummaryView::json(figures));
    readRecurring(figures, book);
    print(SummaryView::text(figures, currentMonth(), terminalLook()));
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
  const auto year = givenYear(parameters);
  const Month month = shownMonth(parameters);
  withSnapshot([&](const Book& book, const auto& currency) {
    page = year ? yearPage(summarize(book, *year, currency))
                : reportPage(readReport(book, month, currency));
  });
  writeFile(path, page);
  print(linux_platform::forStandardOutput(path.string()) + "\n");
  if (!parameters.contains("--no-open")) ReportFile::open(path);
}

}  // namespace

std::vector<linux_platform::Command> overviewCommands() {
  const linux_platform::CommandParameter month{
      "--month", "The month, as 2026-11; this month when not given", ParameterKind::optional};
  const linux_platform::CommandParameter year{"--year", "A year in the place of a month, as 2026",
                                              ParameterKind::optional};
  return {
      {"summary",
       "Show the sums of a month or a year",
       {month, year, {"--json", "Print JSON", ParameterKind::flag}},
       summary},
      {"report",
       "Open a page about a month or a year",
       {month,
        year,
        {"--output", "The file to write; kivo/report.html in XDG_RUNTIME_DIR when not given",
         ParameterKind::optional},
        {"--no-open", "Only write it", ParameterKind::flag}},
       report},
  };
}

}  // namespace kivo::ledger
