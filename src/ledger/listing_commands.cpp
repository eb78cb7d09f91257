#include "ledger/listing_commands.h"

#include <algorithm>
#include <string>

#include "ledger/calendar_day.h"
#include "ledger/entry_listing.h"
#include "ledger/ledger_terminal.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/terminal_text.h"

namespace kivo::ledger {
namespace {

using linux_platform::escapedControls;
using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using ParameterKind = linux_platform::CommandParameter::Kind;

// Returns what was given for `name`; empty when nothing was.
std::string given(const GivenParameters& parameters, const char* name) {
  const auto found = parameters.find(name);
  return found == parameters.end() ? "" : platform::repairedUtf8(found->second);
}

int failFor(const char* name, const std::string& value, const std::string& form) {
  return fail(std::string("invalid ") + name + " \"" + escapedControls(value) + "\": it is " + form,
              exitBadUsage);
}

// The exit status for options that do not fit; 0 when they do.
int readFilter(const GivenParameters& parameters, EntryFilter& filter) {
  filter.category = given(parameters, "--category");
  filter.search = given(parameters, "--search");
  for (const auto& [name, bound] : {std::pair("--from", &filter.from), {"--to", &filter.to}}) {
    *bound = given(parameters, name);
    if (parameters.contains(name) && !isDay(*bound)) {
      return failFor(name, *bound, "a day such as 2026-11-21");
    }
  }
  if (!parameters.contains("--month")) return 0;
  const std::string month = given(parameters, "--month");
  if (!isMonth(month)) return failFor("--month", month, "a month such as 2026-11");
  filter.from = std::max(filter.from, month + "-01");
  const std::string last = month + "-31";  // days are compared as texts
  filter.to = filter.to.empty() ? last : std::min(filter.to, last);
  return 0;
}

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
    return show(book.entries(filter), parameters.contains("--json"), "No transaction fits.");
  });
}

int review(const GivenParameters& parameters) {
  return withBook([&](Book& book) {
    return show(book.entries({.state = LedgerEntry::State::review}), parameters.contains("--json"),
                "There is nothing to look at.");
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
  return {
      {"list",
       "Show the transactions that are booked, newest first",
       {{"--month", "Only those of a month, as 2026-11", ParameterKind::optional},
        {"--from", "Only those from this day on, as 2026-11-21", ParameterKind::optional},
        {"--to", "Only those up to this day", ParameterKind::optional},
        {"--category", "Only those of a category", ParameterKind::optional},
        {"--search", "Only those that hold a text", ParameterKind::optional},
        json},
       list},
      {"review", "Show what is to be looked at before it is booked", {json}, review},
      {"show",
       "Show all of one transaction, with its message",
       {{"ID", "The transaction's number, as list shows it"}, json},
       showOne},
  };
}

}  // namespace kivo::ledger
