#include "ledger/commands/rate_command.h"

#include <string>

#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"

namespace kivo::ledger {

using book::Book;
using money::Rate;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

std::string rateForm() {
  return "a number above zero such as 48.5: " + std::to_string(Rate::mostDigits) +
         " digits at most, with at most one point";
}

void showRates(const Book& book) {
  std::string lines;
  for (const auto& [currency, rate] : book.rates()) {
    lines.append(escapedControls(currency)).append(" ").append(escapedControls(rate));
    if (!Rate::fromText(rate)) lines.append(" is not used: a rate must be ").append(rateForm());
    lines += "\n";
  }
  print(lines.empty() ? "No rate is set.\n" : lines);
}

void rate(const GivenParameters& parameters) {
  const auto currency = givenCurrency(parameters, "CURRENCY", "USD");
  const auto value = given(parameters, "RATE");
  const bool removes = parameters.contains("--remove");
  if (!currency) return withBook(showRates);
  if (removes == value.has_value()) {
    throw BadUsage("give either RATE or --remove");
  }
  const auto set = value ? Rate::fromText(*value) : std::nullopt;
  if (value && !set) throw invalid("RATE", *value, rateForm());
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("rate", parameters);
    book.asCommand(command, [&] {
      if (set) return book.setRate(*currency, *set);
      if (!book.removeRate(*currency))
        throw CommandFailure("there is no rate for " + currency->text());
    });
  });
}

}  // namespace

linux_platform::Command rateCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {"rate",
          "Show or set the rate of a foreign currency",
          {{"CURRENCY", "The currency's code, as USD", optional},
           {"RATE", "Its worth in the book's currency, as 48.5", optional},
           {"--remove", "Have no rate for it", ParameterKind::flag}},
          rate};
}

}  // namespace kivo::ledger
