#include "ledger/commands/overview_commands.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

#include "ledger/commands/command_options.h"
#include "ledger/commands/ledger_terminal.h"
#include "ledger/report_file.h"
#include "overview/current_day.h"
#include "overview/report_figures.h"
#include "overview/report_page.h"
#include "overview/summary_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/private_file.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using money::Month;
using overview::currentMonth;
using overview::MonthSummary;
using overview::readReport;
using overview::reportPage;
using overview::summarize;

namespace {

namespace SummaryView = overview::SummaryView;
using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using ParameterKind = linux_platform::CommandParameter::Kind;

// Calls `use` with a snapshot of the book, the given or current month and the book's currency;
// returns its result.
int withMonth(
    const GivenParameters& parameters,
    const std::function<int(const Book&, const Month& month, const std::string& currency)>& use) {
  const auto given = ledger::given(parameters, "--month");
  const auto month = given ? Month::fromText(*given) : currentMonth();
  if (!month) return failFor("--month", *given, "a month such as 2026-11");
  const auto currency = bookCurrency();
  if (!currency) return exitFailure;
  return withBook([&](const Book& book) {
    int status = exitFailure;
    book.atOneMoment([&] {
      tellSetAside(book);
      status = use(book, *month, *currency);
    });
    return status;
  });
}

int summary(const GivenParameters& parameters) {
  return withMonth(parameters, [&](const Book& book, const auto& month, const auto& currency) {
    const MonthSummary figures = summarize(book, month, currency);
    if (parameters.contains("--json")) {
      return print(linux_platform::jsonForStandardOutput(SummaryView::json(figures).text()) + "\n");
    }
    SummaryView::Look look;
    look.width = linux_platform::onTerminal() ? linux_platform::screenWidth() : look.width;
    if (linux_platform::terminalShowsStyles()) look.style = SummaryView::Look::Style::coloured;
    return print(SummaryView::text(figures, currentMonth(), look));
  });
}

int writeReport(const std::string& page, const std::filesystem::path& path) {
  if (const auto failure = linux_platform::writePrivateFile(path, page)) {
    return fail("cannot write \"" + linux_platform::escapedControls(path.string()) +
                "\": " + *failure);
  }
  return print(linux_platform::forStandardOutput(path.string()) + "\n");
}

// Chooses the file to write. Returns an exit status, 0 when there is one.
int choosePlace(const GivenParameters& parameters, std::filesystem::path& place) {
  if (const auto output = parameters.find("--output"); output != parameters.end()) {
    place = output->second;
    return place.filename().empty() ? failFor("--output", place.string(), "the name of a file") : 0;
  }
  try {
    const auto usual = ReportFile::usualPlace();
    if (!usual) return fail("XDG_RUNTIME_DIR is not set; name a file by --output", exitBadUsage);
    place = *usual;
    return 0;
  } catch (const std::runtime_error& refused) {
    return fail(linux_platform::escapedControls(refused.what()));
  }
}

int report(const GivenParameters& parameters) {
  std::filesystem::path path;
  if (const int failed = choosePlace(parameters, path); failed != 0) return failed;
  std::string page;
  int status =
      withMonth(parameters, [&](const Book& book, const auto& month, const auto& currency) {
        page = reportPage(readReport(book, month, currency));
        return 0;
      });
  if (status == 0) status = writeReport(page, path);
  if (status != 0 || parameters.contains("--no-open")) return status;
  const std::string failure = ReportFile::open(path);
  if (failure.empty()) return 0;
  return fail("the report is written but not opened: " + failure + "; open " +
              linux_platform::escapedControls(path.string()) + " in a browser");
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
      {"report",
       "Write a page about a month and the year before it, and open it",
       {month,
        {"--output", "The file to write; kivo/report.html in XDG_RUNTIME_DIR when not given",
         ParameterKind::optional},
        {"--no-open", "Only write it", ParameterKind::flag}},
       report},
  };
}

}  // namespace kivo::ledger
