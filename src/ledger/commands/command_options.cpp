#include "ledger/commands/command_options.h"

#include <algorithm>
#include <utility>

#include "ledger/commands/ledger_terminal.h"
#include "money/calendar_day.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"

namespace kivo::ledger {

using book::EntryFilter;
using money::isDay;
using money::isMonth;

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
    if (!isDay(*day)) return failFor(name, *day, "a day such as 2026-11-21");
    *bound = *day;
  }
  const auto month = given(parameters, "--month");
  if (!month) return 0;
  if (!isMonth(*month)) return failFor("--month", *month, "a month such as 2026-11");
  filter.from = std::max(filter.from, *month + "-01");
  const std::string last = *month + "-31";  // days are compared as texts
  filter.to = filter.to.empty() ? last : std::min(filter.to, last);
  return 0;
}

}  // namespace kivo::ledger
