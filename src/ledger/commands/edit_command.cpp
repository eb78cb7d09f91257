#include "ledger/commands/edit_command.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/editing_commands.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/made_rules.h"
#include "ledger/commands/opened_book.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "recording/refund_change.h"

namespace kivo::ledger {

using book::Book;
using book::EntryChange;
using book::LedgerEntry;
using money::CurrencyCode;
using money::Money;

namespace {

using linux_platform::BadUsage;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

// The sum of `entry` converted by its rate on `day`; absent when it is in `currency` already.
std::optional<Money> converted(const Book& book, const LedgerEntry& entry, const money::Day& day,
                               const CurrencyCode& currency) {
  if (!entry.amount) {
    throw BadUsage("its sum is unknown: give --amount as well");
  }
  const Money& sum = *entry.amount;
  if (sum.currency == currency) return std::nullopt;
  const std::string give = "give the sum in " + currency.text() + " by --amount";
  const CurrencyCode booksIn = requiredBookCurrency();
  if (currency != booksIn) {
    throw BadUsage("there are rates for " + booksIn.text() + " alone: " + give);
  }
  const auto rate = book.rate(sum.currency, day);
  if (!rate) {
    const std::string code = sum.currency.text();
    throw BadUsage("there is no rate for " + code + " on " + day.text() + ": set it by " +
                   book::bookCommand("rate " + code + " RATE") + ", or " + give);
  }
  const auto made = rate->convert(sum, currency);
  if (made) return made;
  throw BadUsage(codeAndSum(sum) + " cannot be converted at the rate " + rate->text() + ": " +
                 give);
}

// Reads --amount and --currency for an entry that is of the day `day` then; absent when they change
// nothing.
std::optional<Money> amountFrom(const GivenParameters& parameters, const Book& book,
                                const LedgerEntry& entry, const money::Day& day) {
  const auto amount = given(parameters, "--amount");
  const auto currency = givenCurrency(parameters, "--currency", "EGP");
  if (!amount && !currency) return std::nullopt;
  if (!amount) return converted(book, entry, day, *currency);
  if (currency) return sumFrom(*amount, *currency);
  return sumFrom(*amount, entry.amount ? entry.amount->currency : requiredBookCurrency());
}

// Reads --refund and --no-refund. Throws when `entry`, with the kind of `change`, is no income.
std::optional<bool> refundFrom(const GivenParameters& parameters, const LedgerEntry& entry,
                               const EntryChange& change) {
  if (parameters.contains("--no-refund")) return false;
  if (!parameters.contains("--refund")) return std::nullopt;
  const money::Kind kind = change.kind.value_or(entry.kind);
  if (kind == money::Kind::income) return true;
  throw BadUsage(std::string("--refund is for an income, and this is of the kind ") +
                 kindText(kind) + ": give --kind income as well");
}

EntryChange changeFrom(const GivenParameters& parameters, const Book& book,
                       const LedgerEntry& entry) {
  EntryChange change;
  change.date = givenDay(parameters, "--date");
  change.kind = givenKind(parameters);
  change.description = givenText(parameters, "--description");
  change.category = givenText(parameters, "--category");
  change.refund = refundFrom(parameters, entry, change);
  recording::completeRefund(change, entry);
  change.amount = amountFrom(parameters, book, entry, change.date.value_or(entry.date));
  if (!parameters.contains("--amount")) change.original = entry.amount;  // if it was converted
  return change;
}

// Whether the edit holds for later payments, if it is of a payment with a payee.
bool makesRule(const GivenParameters& parameters) {
  return !parameters.contains("--once") &&
         (parameters.contains("--description") || parameters.contains("--category"));
}

// Throws when nothing is to be changed, or --once and --also-earlier have nothing to say.
void requireChange(const GivenParameters& parameters) {
  const auto isGiven = [&](const char* name) { return parameters.contains(name); };
  constexpr std::array changes = {"--date",   "--amount",    "--currency",    "--kind",
                                  "--refund", "--no-refund", "--description", "--category"};
  if (std::none_of(changes.begin(), changes.end(), isGiven)) {
    throw BadUsage(
        "edit needs one of --date, --amount, --currency, --kind, --refund, --no-refund, "
        "--description, --category");
  }
  if (isGiven("--refund") && isGiven("--no-refund")) {
    throw BadUsage("--refund and --no-refund exclude each other: give one of them");
  }
  if (!isGiven("--also-earlier")) return;
  if (isGiven("--once")) {
    throw BadUsage("--once changes no other payment, and --also-earlier does: give one of them");
  }
  if (!makesRule(parameters)) {
    throw BadUsage("--also-earlier needs --description or --category");
  }
}

std::string listing(const std::vector<LedgerEntry>& entries) {
  return entries.size() == 1 ? EntryListing::details(entries.front())
                             : EntryListing::table(entries, linux_platform::screenWidth());
}

void edit(const GivenParameters& parameters) {
  requireChange(parameters);
  withBook([&](Book& book) {
    std::vector<LedgerEntry> edited;
    MadeRules rules;
    const auto editOne = [&](const LedgerEntry& entry) {
      const EntryChange change = changeFrom(parameters, book, entry);
      book.edit(entry.id, change);
      edited.push_back(book.entry(entry.id).value());
      if (makesRule(parameters)) {
        rules.add(book.keepRuleOf(entry.id, change), edited.back().kind);
      }
    };
    book::UserCommand command = userCommand("edit", parameters);
    book.asCommand(command, [&] { changeEach(book, chosenEntries(book, parameters), editOne); });
    print(listing(edited));
    if (!makesRule(parameters)) return;
    print(rules.empty() ? "\nNo payee is named here, so this makes no rule.\n" : "\n");
    rules.tell(book, command, parameters);
  });
}

}  // namespace

linux_platform::Command editCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {"edit",
          "Correct transactions, and later ones of the payee",
          {idsParameter(),
           {"--date", "The day, as 2026-11-21", optional},
           {"--amount", "The sum, as 1,189.50", optional},
           {"--currency", "Its currency's code, as EGP; converts it without --amount", optional},
           {"--kind", "expense, income or transfer", optional, kindNames},
           {"--refund", "An income that gives back a payment", ParameterKind::flag},
           {"--no-refund", "An income after all", ParameterKind::flag},
           {"--description", "The merchant or payee", optional},
           {"--category", "The category", optional},
           {"--once", "Make no rule for later payments to the payee", ParameterKind::flag},
           alsoEarlierOption()},
          edit};
}

}  // namespace kivo::ledger
