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

book::UserCommand userCommand(const std::string& name, const GivenParameters& parameters) {
  std::string arguments;
  std::string options;
  for (const auto& [parameter, value] : parameters) {
    const std::string text = platform::repairedUtf8(value);
    if (parameter == "--yes") continue;
    if (!parameter.starts_with("--")) {
      arguments += " " + text;
    } else {
      options += " " + parameter + (text.empty() ? "" : " " + book::commandWord(text));
    }
  }
  return {.words = name + arguments + options};
}

BadUsage invalid(const char* name, const std::string& value, const std::string& form) {
  return BadUsage(std::string("invalid ") + name + " \"" + value + "\": it must be " + form);
}

std::optional<std::string> givenText(const GivenParameters& parameters, const char* name) {
  auto text = given(parameters, name);
  if (text && text->empty()) throw BadUsage(std::string(name) + " is empty");
  return text;
}

CommandParameter idsParameter() {
  return {"ID", "Numbers as list shows them, and ranges: 3 5 7-9; of a range, those that exist",
          CommandParameter::Kind::several};
}

std::optional<money::Kind> givenKind(const GivenParameters& parameters) {
  const auto text = given(parameters, "--kind");
  if (!text) return std::nullopt;
  const auto kind = money::kindFromText(*text);
  if (!kind) throw invalid("--kind", *text, "expense, income or transfer");
  return kind;
}

std::vector<std::string> kindNames() { return {"expense", "income", "transfer"}; }

money::Money sumFrom(const std::string& text, const money::CurrencyCode& currency,
                     const char* name) {
  const auto sum = money::moneyFromText(text, currency);
  if (sum && isBookable(*sum)) return *sum;
  throw invalid(
      name, text,
      "a sum above zero such as 1,189.50: " + std::to_string(money::minorDigits(currency)) +
          " decimals at most, commas only between thousands, and up to " +
          money::amountText({money::largestSum, currency}));
}

std::optional<std::string> givenAccount(const GivenParameters& parameters) {
  auto account = given(parameters, "--account");
  if (!account) return std::nullopt;
  const bool isDigits =
      !account->empty() && account->find_first_not_of("0123456789") == std::string::npos;
  if (!isDigits) throw invalid("--account", *account, "the digits of an account, such as 4821");
  return account;
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
          {"--search", "Only those that hold a text or have this sum, as 1,189.50", optional},
          {"--kind", "Only those of a kind: expense, income or transfer", optional, kindNames},
          {"--account", "Only those of an account, by its digits or its name", optional},
          {"--min", "Only those of this sum or more", optional},
          {"--max", "Only those of this sum or less", optional}};
}

namespace {

// A sum in the currency of each entry, without a code; empty when it was not given.
std::string givenBound(const GivenParameters& parameters, const char* name) {
  const auto text = given(parameters, name);
  if (!text) return "";
  if (money::nearestSums(*text, money::CurrencyCode())) return *text;
  throw invalid(name, *text,
                "a sum such as 1,189.50: commas only between thousands, and no currency");
}

}  // namespace

EntryFilter filterFrom(const GivenParameters& parameters) {
  EntryFilter filter;
  filter.category = given(parameters, "--category").value_or("");
  filter.search = given(parameters, "--search").value_or("");
  filter.kind = givenKind(parameters);
  if (const auto account = given(parameters, "--account")) {
    if (account->empty()) {
      throw invalid("--account", *account, "an account's digits, such as 4821, or its name");
    }
    filter.account = *account;
  }
  filter.least = givenBound(parameters, "--min");
  filter.largest = givenBound(parameters, "--max");
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
