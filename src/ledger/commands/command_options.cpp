#include "ledger/commands/command_options.h"

#include <algorithm>
#include <utility>

#include "ledger/commands/ledger_terminal.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"

namespace kivo::ledger {

using book::EntryFilter;
using money::Day;
using money::Month;
using money::Period;

using linux_platform::CommandParameter;
using linux_platform::GivenParameters;

std::optional<std::string> given(const GivenParameters& parameters, const char* name) {
  const auto found = parameters.find(name);
  if (found == parameters.end()) return std::nullopt;
  return platform::repairedUtf8(found->second);
}

int failFor(const char* name, const std::string& value, const std::string& form) {
  return fail(std::string("invalid ") + name + " \"" + linux_platform::escapedControls(value) +
                  "\": it must be " + form,
              linux_platform::exitBadUsage);
}

std::vector<CommandParameter> filterOptions() {
  constexpr auto optional = CommandParameter::Kind::optional;
  return {{"--month", "Only those of a month, as 2026-11", optional},
          {"--from", "Only those from this day on, as 2026-11-21", optional},
          {"--to", "Only those up to this day", optional},
          {"--category", "Only those of a category", optional},
          {"--search", "Only those that hold a text", optional}};
}

int readFilter(const GivenParameters& parameters, EntryFilter& filter) {
  filter.category = given(parameters, "--category").value_or("");
  filter.search = given(parameters, "--search").value_or("");
  for (const auto& [name, bound] : {std::pair("--from", &filter.from), {"--to", &filter.to}}) {
    const auto day = given(parameters, name);
    if (!day) continue;
    *bound = Day::fromText(*day);
    if (!*bound) return failFor(name, *day, "a day such as 2026-11-21");
  }
  const auto month = given(parameters, "--month");
  if (!month) return 0;
  const auto read = Month::fromText(*month);
  if (!read) return failFor("--month", *month, "a month such as 2026-11");
  const auto [first, last] = Period::of(*read);
  filter.from = std::max(filter.from.value_or(first), first);
  filter.to = std::min(filter.to.value_or(last), last);
  return 0;
}

}  // namespace kivo::ledger
