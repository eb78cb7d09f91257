#include "ledger/commands/export_commands.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <string_view>

#include <unistd.h>

#include "ledger/commands/command_options.h"
#include "ledger/commands/ledger_terminal.h"
#include "overview/exports/beancount_export.h"
#include "overview/exports/csv_export.h"
#include "overview/exports/hledger_export.h"
#include "overview/exports/ofx_export.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/private_file.h"

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
using ParameterKind = linux_platform::CommandParameter::Kind;

struct Format {
  std::string_view name;
  std::string (*written)(const std::vector<LedgerEntry>& entries);
};

constexpr std::array<Format, 4> formats = {{{"csv", csvExport},
                                            {"hledger", hledgerExport},
                                            {"beancount", beancountExport},
                                            {"ofx", ofxExport}}};

std::vector<std::string> formatNames() {
  std::vector<std::string> names;
  for (const Format& format : formats) names.emplace_back(format.name);
  return names;
}

int show(const std::string& text) {
  if (isatty(STDOUT_FILENO) != 1) return print(text);
  std::istringstream lines(text);
  std::string shown;
  for (std::string line; std::getline(lines, line);) {
    shown += linux_platform::escapedControls(line) + "\n";
  }
  return print(shown);
}

int writeFile(const std::string& path, const std::string& text, std::size_t count) {
  if (const auto failure = linux_platform::writePrivateFile(path, text)) {
    return fail("cannot write \"" + linux_platform::escapedControls(path) + "\": " + *failure);
  }
  return print("Exported " + std::to_string(count) +
               (count == 1 ? " transaction.\n" : " transactions.\n"));
}

int exportBook(const GivenParameters& parameters) {
  EntryFilter filter;
  if (const int failed = readFilter(parameters, filter); failed != 0) return failed;
  const std::string name = given(parameters, "--format").value();
  const auto* const format = std::find_if(formats.begin(), formats.end(),
                                          [&](const Format& one) { return one.name == name; });
  if (format == formats.end()) return failFor("--format", name, "csv, hledger, beancount or ofx");
  return withBook([&](Book& book) {
    tellSetAside(book);
    std::vector<LedgerEntry> entries = book.entries(filter);
    std::reverse(entries.begin(), entries.end());  // imports want the oldest first
    const std::string text = format->written(entries);
    const auto output = parameters.find("--output");
    if (output == parameters.end()) return show(text);
    return writeFile(output->second, text, entries.size());
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
  return {{"export", "Write the booked transactions for other programs, oldest first",
           std::move(options), exportBook}};
}

}  // namespace kivo::ledger
