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
  for (const book::StoredRate& rate : book.rates()) {
    lines += escapedControls(rate.currency) + " " + escapedControls(rate.rate);
    if (!rate.from.empty()) lines += " from " + escapedControls(rate.from);
    if (!Rate::fromText(rate.rate)) lines += " is not used: a rate must be " + rateForm();
    lines += "\n";
  }
  print(lines.empty() ? "No rate is set.\n" : lines);
}

void rate(const GivenParameters& parameters) {
  const auto currency = givenCurrency(parameters, "CURRENCY", "USD");
  const auto value = given(parameters, "RATE");
  const auto from = givenDay(parameters, "--from");
  const bool removes = parameters.contains("--remove");
  if (!currency && !from) return withBook(showRates);
  if (!currency) throw BadUsage("name the currency of the rate");
  if (removes == value.has_value()) {
    throw BadUsage("give either RATE or --remove");
  }
  const auto set = value ? Rate::fromText(*value) : std::nullopt;
  if (value && !set) throw invalid("RATE", *value, rateForm());
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("rate", parameters);
    book.asCommand(command, [&] {
      if (set) return book.setRate(*currency, *set, from);
      if (!book.removeRate(*currency, from)) {
        throw CommandFailure("there is no rate for " + currency->text() +
                             (from ? " from " + from->text() : ""));
      }
    });
  });
}

}  // namespace

linux_platform::Command rateCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {
      "rate",
      "Show or set the rate of a foreign currency",
      {{"CURRENCY", "The currency's code, as USD", optional},
       {"RATE", "Its worth in the book's currency, as 48.5", optional},
       {"--from", "The first day on which it holds; from the beginning when not given", optional},
       {"--remove", "Have no rate for it, or none from that day", ParameterKind::flag}},
      rate};
}

}  // namespace kivo::ledger
