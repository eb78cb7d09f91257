#include "ledger/commands/export_commands.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <string_view>

#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/written_file.h"
#include "overview/exports/beancount_export.h"
#include "overview/exports/csv_export.h"
#include "overview/exports/hledger_export.h"
#include "overview/exports/ofx_export.h"
#include "platform/linux/foundation/safe_text.h"
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

using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

struct ExportFormat {
  std::string_view name;
  std::string (*written)(const std::vector<LedgerEntry>& entries);
};

constexpr std::array<ExportFormat, 4> formats = {{{"csv", csvExport},
                                                  {"hledger", hledgerExport},
                                                  {"beancount", beancountExport},
                                                  {"ofx", ofxExport}}};

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
  const std::string name = given(parameters, "--format").value();
  const auto* const format = std::find_if(
      formats.begin(), formats.end(), [&](const ExportFormat& one) { return one.name == name; });
  if (format == formats.end()) throw invalid("--format", name, "csv, hledger, beancount or ofx");
  withBook([&](Book& book) {
    tellSetAside(book);
    std::vector<LedgerEntry> entries = book.entries(filter);
    std::reverse(entries.begin(), entries.end());  // imports want the oldest first
    const std::string text = format->written(entries);
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
      {"--output", "The file to write; standard output when not given", ParameterKind::optional}};
  for (linux_platform::CommandParameter& option : filterOptions()) {
    options.push_back(std::move(option));
  }
  return {{"export", "Write the booked transactions for other programs", std::move(options),
           exportBook}};
}

}  // namespace kivo::ledger
