#include "ledger/commands/editing_commands.h"

#include <iostream>
#include <string>

#include <unistd.h>

#include "ledger/commands/command_options.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/ledger_terminal.h"
#include "platform/linux/foundation/safe_text.h"
#include "recording/rereading.h"

namespace kivo::ledger {

using book::Book;
using book::EntryChange;
using book::LedgerEntry;
using money::amountText;
using money::currencyCode;
using money::isCurrency;
using money::kindFromText;
using money::largestSum;
using money::minorDigits;
using money::Money;
using money::moneyFromText;
using money::Rate;

namespace {

using linux_platform::escapedControls;
using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using ParameterKind = linux_platform::CommandParameter::Kind;

std::string sumText(const Money& sum) { return sum.currency + " " + amountText(sum); }

int readSum(const std::string& text, const std::string& currency, EntryChange& change) {
  change.amount = moneyFromText(text, currency);
  if (change.amount && isBookable(*change.amount)) return 0;
  return failFor("--amount", text,
                 "a sum above zero such as 1,189.50: " + std::to_string(minorDigits(currency)) +
                     " decimals at most, commas only between thousands, and up to " +
                     amountText({largestSum, currency}));
}

// Reads --currency without --amount: the sum is converted by its rate.
int readConversion(const Book& book, const LedgerEntry& entry, const std::string& currency,
                   EntryChange& change) {
  if (!entry.amount) return fail("its sum is unknown: give --amount as well", exitBadUsage);
  const Money& sum = *entry.amount;
  if (sum.currency == currency) return 0;
  const std::string give = "give the sum in " + currency + " by --amount";
  const auto booksIn = bookCurrency();
  if (!booksIn) return exitFailure;
  if (currency != *booksIn) {
    return fail("there are rates for " + *booksIn + " alone: " + give, exitBadUsage);
  }
  const auto rate = book.rate(sum.currency);
  if (!rate) {
    return fail("there is no rate for " + sum.currency + ": set it by kivo-ledger rate " +
                    sum.currency + " RATE, or " + give,
                exitBadUsage);
  }
  change.amount = rate->convert(sum, currency);
  if (change.amount) return 0;
  return fail(sumText(sum) + " cannot be converted at the rate " + rate->text() + ": " + give,
              exitBadUsage);
}

// Reads --amount and --currency. Returns an exit status, 0 when they fit.
int readAmount(const GivenParameters& parameters, const Book& book, const LedgerEntry& entry,
               EntryChange& change) {
  const auto amount = given(parameters, "--amount");
  const auto code = given(parameters, "--currency");
  if (code) {
    const std::string currency = currencyCode(*code);
    if (!isCurrency(currency)) return failFor("--currency", *code, "a code such as EGP");
    return amount ? readSum(*amount, currency, change)
                  : readConversion(book, entry, currency, change);
  }
  if (!amount) return 0;
  const auto kept = entry.amount ? entry.amount->currency : bookCurrency();
  return kept ? readSum(*amount, *kept, change) : exitFailure;
}

// Returns an exit status, 0 when all that was given fits.
int readChange(const GivenParameters& parameters, const Book& book, const LedgerEntry& entry,
               EntryChange& change) {
  if (const auto date = given(parameters, "--date")) {
    change.date = money::Day::fromText(*date);
    if (!change.date) return failFor("--date", *date, "a day such as 2026-11-21");
  }
  if (const auto kind = given(parameters, "--kind")) {
    change.kind = kindFromText(*kind);
    if (!change.kind) return failFor("--kind", *kind, "expense, income or transfer");
  }
  change.description = given(parameters, "--description");
  change.category = given(parameters, "--category");
  if (change.description == "") return fail("--description is empty", exitBadUsage);
  if (change.category == "") return fail("--category is empty", exitBadUsage);
  return readAmount(parameters, book, entry, change);
}

int showChanged(const Book& book, std::int64_t id) {
  const auto entry = book.entry(id);
  return entry ? print(EntryListing::details(*entry)) : fail("it was deleted meanwhile");
}

int edit(const GivenParameters& parameters) {
  if (parameters.size() == 1) {
    return fail("edit needs one of --date, --amount, --currency, --kind, --description, --category",
                exitBadUsage);
  }
  return withEntry(parameters, [&](Book& book, const LedgerEntry& entry) {
    EntryChange change;
    if (const int failed = readChange(parameters, book, entry, change); failed != 0) return failed;
    book.edit(entry.id, change);
    return showChanged(book, entry.id);
  });
}

// The reason why `accept` does not book an entry, and the command that helps.
std::string whyNotBooked(const LedgerEntry& entry, const std::string& currency) {
  const std::string edit = "; kivo-ledger edit " + std::to_string(entry.id) + " --amount ";
  if (!entry.amount) return "its sum is unknown" + edit + "gives it one";
  const std::string sum = sumText(*entry.amount);
  if (!isBookable(*entry.amount)) {
    return "its sum " + sum + " is not above zero and up to " +
           amountText({largestSum, entry.amount->currency}) + edit + "corrects it";
  }
  return "its sum " + sum + " converted at its rate is not from " + amountText({1, currency}) +
         " to " + amountText({largestSum, currency}) + edit + "SUM --currency " + currency +
         " gives it one";
}

int accept(const GivenParameters& parameters) {
  const auto currency = bookCurrency();
  if (!currency) return exitFailure;
  return withEntry(parameters, [&](Book& book, const LedgerEntry& entry) {
    if (entry.state == LedgerEntry::State::setAside) {
      return fail("it is set aside; kivo-ledger show " + std::to_string(entry.id) +
                  " says which value to edit");
    }
    const auto sum = recording::accept(book, entry.id, *currency);
    if (!sum) return fail(whyNotBooked(entry, *currency));
    const std::string rate = sum->rate ? " at the rate " + sum->rate->text() : "";
    return print("Booked as " + sumText(sum->amount) + rate + ".\n");
  });
}

bool isConfirmed(const std::string& question) {
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer)) std::cerr << '\n';
  return answer == "y" || answer == "Y" || answer == "yes";
}

bool hasTerminal() { return isatty(STDIN_FILENO) == 1; }

int remove(const GivenParameters& parameters) {
  const bool asks = !parameters.contains("--yes");
  if (asks && !hasTerminal()) {
    return fail("there is no terminal to ask at; --yes deletes without asking", exitBadUsage);
  }
  return withEntry(parameters, [asks](Book& book, const LedgerEntry& entry) {
    if (asks && !isConfirmed(EntryListing::details(entry) + "\nDelete this transaction?")) {
      return fail("nothing was deleted");
    }
    book.remove(entry.id);
    return print("Deleted.\n");
  });
}

int forgetTexts(const GivenParameters& parameters) {
  const bool asks = !parameters.contains("--yes");
  if (asks && !hasTerminal()) {
    return fail("there is no terminal to ask at; --yes forgets without asking", exitBadUsage);
  }
  if (asks && !isConfirmed("Remove the texts of all messages from the book, for ever?")) {
    return fail("nothing was forgotten");
  }
  return withBook([](Book& book) {
    const std::int64_t count = book.forgetTexts();
    return print("Forgot " + std::to_string(count) + (count == 1 ? " text.\n" : " texts.\n"));
  });
}

std::string rateForm() {
  return "a number above zero such as 48.5: " + std::to_string(Rate::mostDigits) +
         " digits at most, with at most one point";
}

int showRates(const Book& book) {
  std::string lines;
  for (const auto& [currency, rate] : book.rates()) {
    lines.append(escapedControls(currency)).append(" ").append(escapedControls(rate));
    if (!Rate::fromText(rate)) lines.append(" is not used: a rate must be ").append(rateForm());
    lines += "\n";
  }
  return print(lines.empty() ? "No rate is set.\n" : lines);
}

int rate(const GivenParameters& parameters) {
  const auto code = given(parameters, "CURRENCY");
  const auto value = given(parameters, "RATE");
  const bool removes = parameters.contains("--remove");
  if (!code) return withBook(showRates);
  const std::string currency = currencyCode(*code);
  if (!isCurrency(currency)) return failFor("CURRENCY", *code, "a code such as USD");
  if (removes == value.has_value()) return fail("give either RATE or --remove", exitBadUsage);
  const auto set = value ? Rate::fromText(*value) : std::nullopt;
  if (value && !set) return failFor("RATE", *value, rateForm());
  return withBook([&](Book& book) {
    if (removes) return book.removeRate(currency) ? 0 : fail("there is no rate for " + currency);
    book.setRate(currency, *set);
    return 0;
  });
}

std::vector<std::string> kinds() { return {"expense", "income", "transfer"}; }

}  // namespace

std::vector<linux_platform::Command> editingCommands() {
  const linux_platform::CommandParameter id{"ID", "The transaction's number, as list shows it"};
  constexpr auto optional = ParameterKind::optional;
  return {
      {"edit",
       "Correct a transaction; description and category hold for its payee from then on",
       {id,
        {"--date", "The day, as 2026-11-21", optional},
        {"--amount", "The sum, as 1,189.50", optional},
        {"--currency", "Its currency's code, as EGP; converts it without --amount", optional},
        {"--kind", "expense, income or transfer", optional, kinds},
        {"--description", "The merchant or payee", optional},
        {"--category", "The category", optional}},
       edit},
      {"accept", "Book a transaction that is in review", {id}, accept},
      {"delete",
       "Delete a transaction, after asking",
       {id, {"--yes", "Delete it without asking", ParameterKind::flag}},
       remove},
      {"forget-texts",
       "Remove the texts of all messages from the book, after asking",
       {{"--yes", "Remove them without asking", ParameterKind::flag}},
       forgetTexts},
      {"rate",
       "Show or set what one unit of a foreign currency is worth",
       {{"CURRENCY", "The currency's code, as USD", optional},
        {"RATE", "Its worth in the book's currency, as 48.5", optional},
        {"--remove", "Have no rate for it", ParameterKind::flag}},
       rate},
  };
}

}  // namespace kivo::ledger
