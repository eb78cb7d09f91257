#include "ledger/commands/command_options.h"

#include <algorithm>

#include "platform/foundation/utf8.h"

namespace kivo::ledger {

using book::EntryFilter;
using money::Day;
using money::Month;
using money::Period;

using linux_platform::BadUsage;
using linux_platform::CommandParameter;
using linux_platform::GivenParameters;

std::optional<std::string> given(const GivenParameters& parameters, const char* name) {
  const auto found = parameters.find(name);
  if (found == parameters.end()) return std::nullopt;
  return platform::repairedUtf8(found->second);
}

BadUsage invalid(const char* name, const std::string& value, const std::string& form) {
  return BadUsage(std::string("invalid ") + name + " \"" + value + "\": it must be " + form);
}

std::optional<std::string> givenText(const GivenParameters& parameters, const char* name) {
  auto text = given(parameters, name);
  if (text && text->empty()) throw BadUsage(std::string(name) + " is empty");
  return text;
}

std::optional<money::Kind> givenKind(const GivenParameters& parameters) {
  const auto text = given(parameters, "--kind");
  if (!text) return std::nullopt;
  const auto kind = money::kindFromText(*text);
  if (!kind) throw invalid("--kind", *text, "expense, income or transfer");
  return kind;
}

std::vector<std::string> kindNames() { return {"expense", "income", "transfer"}; }

money::Money sumFrom(const std::string& text, const money::CurrencyCode& currency) {
  const auto sum = money::moneyFromText(text, currency);
  if (sum && isBookable(*sum)) return *sum;
  throw invalid(
      "--amount", text,
      "a sum above zero such as 1,189.50: " + std::to_string(money::minorDigits(currency)) +
          " decimals at most, commas only between thousands, and up to " +
          money::amountText({money::largestSum, currency}));
}

std::optional<Day> givenDay(const GivenParameters& parameters, const char* name) {
  const auto text = given(parameters, name);
  if (!text) return std::nullopt;
  const auto day = Day::fromText(*text);
  if (!day) throw invalid(name, *text, "a day such as 2026-11-21");
  return day;
}

std::optional<Month> givenMonth(const GivenParameters& parameters) {
  const auto text = given(parameters, "--month");
  if (!text) return std::nullopt;
  const auto month = Month::fromText(*text);
  if (!month) throw invalid("--month", *text, "a month such as 2026-11");
  return month;
}

std::optional<money::CurrencyCode> givenCurrency(const GivenParameters& parameters,
                                                 const char* name, const std::string& example) {
  const auto text = given(parameters, name);
  if (!text) return std::nullopt;
  const auto code = money::currencyFromText(*text);
  if (!code) throw invalid(name, *text, "a code such as " + example);
  return code;
}

std::vector<CommandParameter> filterOptions() {
  constexpr auto optional = CommandParameter::Kind::optional;
  return {{"--month", "Only those of a month, as 2026-11", optional},
          {"--from", "Only those from this day on, as 2026-11-21", optional},
          {"--to", "Only those up to this day", optional},
          {"--category", "Only those of a category", optional},
          {"--search", "Only those that hold a text", optional}};
}

EntryFilter filterFrom(const GivenParameters& parameters) {
  EntryFilter filter;
  filter.category = given(parameters, "--category").value_or("");
  filter.search = given(parameters, "--search").value_or("");
  filter.from = givenDay(parameters, "--from");
  filter.to = givenDay(parameters, "--to");
  if (const auto month = givenMonth(parameters)) {
    const auto [first, last] = Period::of(*month);
    filter.from = std::max(filter.from.value_or(first), first);
    filter.to = std::min(filter.to.value_or(last), last);
  }
  return filter;
}

}  // namespace kivo::ledger
