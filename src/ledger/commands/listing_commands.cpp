#include "ledger/commands/listing_commands.h"

#include <string>
#include <utility>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/pair_commands.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

using book::Book;
using book::EntryFilter;
using book::LedgerEntry;

namespace {

using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

void show(const std::vector<LedgerEntry>& entries, bool asJson, const char* none) {
  if (asJson) {
    std::vector<platform::JSONEncoder> objects;
    for (const LedgerEntry& entry : entries) objects.push_back(EntryListing::json(entry));
    return print(linux_platform::jsonForStandardOutput(platform::JSONEncoder::arrayText(objects)) +
                 "\n");
  }
  if (entries.empty()) return print(std::string(none) + "\n");
  print(EntryListing::table(entries, linux_platform::screenWidth()));
}

void list(const GivenParameters& parameters) {
  const EntryFilter filter = filterFrom(parameters);
  withBook([&](Book& book) {
    tellSetAside(book);
    const auto entries = book.entries(filter);
    const bool asJson = parameters.contains("--json");
    show(entries, asJson, "No transaction fits.");
    if (!asJson && linux_platform::onTerminal()) print(EntryListing::sums(entries));
  });
}

void review(const GivenParameters& parameters) {
  withBook([&](Book& book) {
    tellSetAside(book);
    const auto entries = book.entries({.state = LedgerEntry::State::review});
    const bool asJson = parameters.contains("--json");
    const std::string offers = asJson ? "" : pairOffers(book);
    if (entries.empty() && !offers.empty()) return print(offers);
    show(entries, asJson, "There is nothing to look at.");
    if (!offers.empty()) print("\n" + offers);
    if (asJson || entries.empty() || !linux_platform::onTerminal()) return;
    print("To have messages like one of these\nbooked from now on: " +
          book::bookCommand("teach ID") + "\n");
  });
}

void showOne(const GivenParameters& parameters) {
  withEntry(parameters, [&](Book&, const LedgerEntry& entry) {
    if (!parameters.contains("--json")) return print(EntryListing::details(entry));
    print(linux_platform::jsonForStandardOutput(EntryListing::json(entry).text()) + "\n");
  });
}

}  // namespace

std::vector<linux_platform::Command> listingCommands() {
  const linux_platform::CommandParameter json{"--json", "Print JSON", ParameterKind::flag};
  std::vector<linux_platform::CommandParameter> listOptions = filterOptions();
  listOptions.push_back(json);
  return {
      {"list", "Show the booked transactions, newest first", std::move(listOptions), list},
      {"review", "Show the transactions that wait for a decision", {json}, review},
      {"show",
       "Show all of one transaction, with its message",
       {{"ID", "The transaction's number, as list shows it"}, json},
       showOne},
  };
}

}  // namespace kivo::ledger
