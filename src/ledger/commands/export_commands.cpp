#include "ledger/commands/export_commands.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/written_file.h"
#include "overview/account_figures.h"
#include "overview/exports/account_balances.h"
#include "overview/exports/beancount_export.h"
#include "overview/exports/csv_export.h"
#include "overview/exports/hledger_export.h"
#include "overview/exports/ofx_export.h"
#include "overview/period_summary.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using book::EntryFilter;
using book::LedgerEntry;
using overview::beancountExport;
using overview::csvExport;
using overview::hledgerExport;
using overview::ofxExport;

namespace {

using linux_platform::BadUsage;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

using Balances = std::vector<overview::AccountBalances>;

std::string writtenAsCsv(const std::vector<LedgerEntry>& entries, const Balances&) {
  return csvExport(entries);
}

struct ExportFormat {
  std::string_view name;
  std::string (*written)(const std::vector<LedgerEntry>& entries, const Balances& balances);
};

// The first has the digits of accounts, and no balances.
constexpr std::array<ExportFormat, 4> formats = {{{"csv", writtenAsCsv},
                                                  {"hledger", hledgerExport},
                                                  {"beancount", beancountExport},
                                                  {"ofx", ofxExport}}};

const ExportFormat& requiredFormat(const GivenParameters& parameters) {
  const std::string name = given(parameters, "--format").value();
  const auto* const format = std::find_if(
      formats.begin(), formats.end(), [&](const ExportFormat& one) { return one.name == name; });
  if (format == formats.end()) throw invalid("--format", name, "csv, hledger, beancount or ofx");
  return *format;
}

// Throws BadUsage when --balances was given with what it cannot be combined with.
void checkBalances(const GivenParameters& parameters, const ExportFormat& format) {
  if (!parameters.contains("--balances")) return;
  if (&format == &formats.front()) throw BadUsage("csv has no place for --balances");
  for (const char* const option : {"--category", "--search", "--kind", "--min", "--max"}) {
    if (!parameters.contains(option)) continue;
    throw BadUsage(std::string("--balances needs every transaction of an account: leave out ") +
                   option);
  }
}

// The names of the accounts that have one, by their digits. A name that two accounts have is
// followed by the digits, since one account for both would have wrong balances.
std::map<std::string, std::string> namesOf(const std::vector<book::Account>& accounts) {
  std::map<std::string, int> uses;
  for (const book::Account& account : accounts) ++uses[overview::nameKey(account.name)];
  std::map<std::string, std::string> names;
  for (const book::Account& account : accounts) {
    if (account.name.empty()) continue;
    const bool isUnique = uses[overview::nameKey(account.name)] == 1;
    names[account.digits] = isUnique ? account.name : account.name + " " + account.digits;
  }
  return names;
}

// The figures of the accounts in the days of `filter`.
std::vector<overview::AccountFigures> figuresOf(const Book& book, const EntryFilter& filter) {
  std::vector<book::AccountEntry> entries = book.accountEntries();
  std::erase_if(entries, [&](const book::AccountEntry& entry) {
    return (filter.from && entry.date < *filter.from) || (filter.to && *filter.to < entry.date);
  });
  return overview::accountFigures(entries, book.accounts());
}

std::string written(const Book& book, const ExportFormat& format, std::vector<LedgerEntry> entries,
                    std::vector<overview::AccountFigures> figures) {
  if (&format != &formats.front()) {
    const auto names = namesOf(book.accounts());
    const auto name = [&](std::string& account) {
      if (const auto found = names.find(account); found != names.end()) account = found->second;
    };
    for (LedgerEntry& entry : entries) name(entry.account);
    for (overview::AccountFigures& account : figures) name(account.account);
  }
  return format.written(entries, overview::accountBalances(entries, figures));
}

std::vector<std::string> formatNames() {
  std::vector<std::string> names;
  for (const ExportFormat& format : formats) names.emplace_back(format.name);
  return names;
}

void show(const std::string& text) {
  if (!linux_platform::onTerminal()) return print(text);
  std::istringstream lines(text);
  std::string shown;
  for (std::string line; std::getline(lines, line);) {
    shown += linux_platform::escapedControls(line) + "\n";
  }
  print(shown);
}

void exportBook(const GivenParameters& parameters) {
  const EntryFilter filter = filterFrom(parameters);
  const ExportFormat& format = requiredFormat(parameters);
  checkBalances(parameters, format);
  withBook([&](Book& book) {
    tellSetAside(book);
    std::vector<LedgerEntry> entries;
    std::string text;
    book.atOneMoment([&] {
      entries = book.entries(filter);
      std::reverse(entries.begin(), entries.end());  // imports want the oldest first
      std::vector<overview::AccountFigures> figures;
      if (parameters.contains("--balances")) figures = figuresOf(book, filter);
      text = written(book, format, entries, std::move(figures));
    });
    const auto output = parameters.find("--output");
    if (output == parameters.end()) return show(text);
    writeFile(output->second, text);
    const std::string count = std::to_string(entries.size());
    print("Exported " + count + (entries.size() == 1 ? " transaction.\n" : " transactions.\n"));
  });
}

}  // namespace

std::vector<linux_platform::Command> exportCommands() {
  std::vector<linux_platform::CommandParameter> options = {
      {"--format", "csv, hledger, beancount or ofx", ParameterKind::required, formatNames},
      {"--output", "The file to write; standard output when not given", ParameterKind::optional},
      {"--balances", "Assert the balances that messages state", ParameterKind::flag}};
  for (linux_platform::CommandParameter& option : filterOptions()) {
    options.push_back(std::move(option));
  }
  return {{"export", "Write the booked transactions for other programs", std::move(options),
           exportBook}};
}

}  // namespace kivo::ledger
