#include "ledger/commands/listing_commands.h"

#include <string>
#include <utility>

#include "ledger/commands/command_options.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/ledger_terminal.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using book::EntryFilter;
using book::LedgerEntry;

namespace {

using linux_platform::GivenParameters;
using ParameterKind = linux_platform::CommandParameter::Kind;

int show(const std::vector<LedgerEntry>& entries, bool asJson, const char* none) {
  if (asJson) {
    std::vector<platform::JSONEncoder> objects;
    for (const LedgerEntry& entry : entries) objects.push_back(EntryListing::json(entry));
    return print(linux_platform::jsonForStandardOutput(platform::JSONEncoder::arrayText(objects)) +
                 "\n");
  }
  if (entries.empty()) return print(std::string(none) + "\n");
  return print(EntryListing::table(entries, linux_platform::screenWidth()));
}

int list(const GivenParameters& parameters) {
  EntryFilter filter;
  if (const int failed = readFilter(parameters, filter); failed != 0) return failed;
  return withBook([&](Book& book) {
    tellSetAside(book);
    return show(book.entries(filter), parameters.contains("--json"), "No transaction fits.");
  });
}

int review(const GivenParameters& parameters) {
  return withBook([&](Book& book) {
    tellSetAside(book);
    const auto entries = book.entries({.state = LedgerEntry::State::review});
    const bool asJson = parameters.contains("--json");
    const int status = show(entries, asJson, "There is nothing to look at.");
    if (asJson || entries.empty() || status != 0 || !linux_platform::onTerminal()) return status;
    return print("To have messages like one of these\nbooked from now on: kivo-ledger teach ID\n");
  });
}

int showOne(const GivenParameters& parameters) {
  return withEntry(parameters, [&](Book&, const LedgerEntry& entry) {
    if (!parameters.contains("--json")) return print(EntryListing::details(entry));
    return print(linux_platform::jsonForStandardOutput(EntryListing::json(entry).text()) + "\n");
  });
}

}  // namespace

std::vector<linux_platform::Command> listingCommands() {
  const linux_platform::CommandParameter json{"--json", "Print JSON", ParameterKind::flag};
  std::vector<linux_platform::CommandParameter> listOptions = filterOptions();
  listOptions.push_back(json);
  return {
      {"list", "Show the transactions that are booked, newest first", std::move(listOptions), list},
      {"review", "Show the transactions that wait for a decision", {json}, review},
      {"show",
       "Show all of one transaction, with its message",
       {{"ID", "The transaction's number, as list shows it"}, json},
       showOne},
  };
}

}  // namespace kivo::ledger
