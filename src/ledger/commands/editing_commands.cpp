#include "ledger/commands/editing_commands.h"

#include <cstdint>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/opened_book.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "recording/rereading.h"

namespace kivo::ledger {

using book::Book;
using book::EntryChange;
using book::LedgerEntry;
using money::amountText;
using money::CurrencyCode;
using money::largestSum;
using money::Money;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using linux_platform::Prompt;
using ParameterKind = linux_platform::CommandParameter::Kind;

// The line that says what was done to each entry.
using Lines = std::vector<std::pair<std::int64_t, std::string>>;

// Of several, each line begins with the entry's id.
std::string textOf(const Lines& lines) {
  if (lines.size() == 1) return lines.front().second;
  std::string text;
  for (const auto& [id, line] : lines) text += std::to_string(id) + ": " + line;
  return text;
}

// The reason why `accept` does not book an entry, and the command that helps.
std::string whyNotBooked(const LedgerEntry& entry, const CurrencyCode& currency) {
  const auto edit = [id = std::to_string(entry.id)](const std::string& sum) {
    return "; " + book::bookCommand("edit " + id + " --amount" + sum);
  };
  if (!entry.amount) return "its sum is unknown" + edit("") + " gives it one";
  const std::string sum = codeAndSum(*entry.amount);
  if (!isBookable(*entry.amount)) {
    return "its sum " + sum + " is not above zero and up to " +
           amountText({largestSum, entry.amount->currency}) + edit("") + " corrects it";
  }
  return "its sum " + sum + " converted at its rate is not from " + amountText({1, currency}) +
         " to " + amountText({largestSum, currency}) + edit(" SUM --currency " + currency.text()) +
         " gives it one";
}

void accept(const GivenParameters& parameters) {
  const CurrencyCode currency = requiredBookCurrency();
  Lines lines;
  withBook([&](Book& book) {
    const auto acceptOne = [&](const LedgerEntry& entry) {
      if (entry.state == LedgerEntry::State::setAside) {
        throw CommandFailure("it is set aside; " +
                             book::bookCommand("show " + std::to_string(entry.id)) +
                             " says which value to edit");
      }
      const auto sum = recording::accept(book, entry.id, currency);
      if (!sum) throw CommandFailure(whyNotBooked(entry, currency));
      lines.emplace_back(entry.id, bookedSentence(*sum));
    };
    book::UserCommand command = userCommand("accept", parameters);
    book.asCommand(command, [&] { changeEach(book, chosenEntries(book, parameters), acceptOne); });
  });
  print(textOf(lines));
}

// Whether the command asks before it changes anything. `does` is a verb, such as "deletes". Throws
// when it asks and there is no terminal.
bool asksFirst(const GivenParameters& parameters, const std::string& does) {
  if (parameters.contains("--yes")) return false;
  if (linux_platform::inputIsTerminal()) return true;
  throw BadUsage("there is no terminal to ask at; --yes " + does + " without asking");
}

bool isConfirmed(const std::string& question) {
  return Prompt(std::cin).confirms(question, Prompt::Preset::no);
}

// Lists the entries when they are few.
std::string deletionQuestion(const std::vector<LedgerEntry>& chosen) {
  constexpr std::size_t few = 10;
  if (chosen.size() == 1) {
    return EntryListing::details(chosen.front()) + "\nDelete this transaction?";
  }
  std::string question = "Delete these " + std::to_string(chosen.size()) + " transactions?";
  if (chosen.size() > few) return question;
  return EntryListing::table(chosen, linux_platform::screenWidth()) + "\n" + question;
}

void remove(const GivenParameters& parameters) {
  const bool asks = asksFirst(parameters, "deletes");
  Lines lines;
  withBook([&](Book& book) {
    const std::vector<LedgerEntry> chosen = chosenEntries(book, parameters);
    if (asks && !isConfirmed(deletionQuestion(chosen))) {
      throw CommandFailure("nothing was deleted");
    }
    book::UserCommand command = userCommand("delete", parameters);
    book.asCommand(command, [&] {
      changeEach(book, chosen, [&](const LedgerEntry& entry) {
        if (!book.remove(entry.id)) throw CommandFailure("it was deleted meanwhile");
        lines.emplace_back(entry.id, "Deleted.\n");
      });
    });
  });
  print(textOf(lines));
}

void forgetTexts(const GivenParameters& parameters) {
  const bool asks = asksFirst(parameters, "forgets");
  if (asks &&
      !isConfirmed(
          "Remove the texts of all messages from the book, and all ignored messages, for ever?")) {
    throw CommandFailure("nothing was forgotten");
  }
  withBook([](Book& book) {
    book::UserCommand command{"forget-texts"};
    book::ForgottenTexts forgotten;
    book.asCommand(command, [&] { forgotten = book.forgetTexts(); });
    const auto [ofEntries, ofIgnored] = forgotten;
    const std::int64_t count = ofEntries + ofIgnored;
    print("Forgot " + std::to_string(count) + (count == 1 ? " text.\n" : " texts.\n"));
    if (ofIgnored == 0) return;
    print(std::to_string(ofIgnored) + " of them " +
          (ofIgnored == 1 ? "was an ignored message, which is gone.\n"
                          : "were ignored messages, which are gone.\n"));
  });
}

}  // namespace

std::string codeAndSum(const Money& sum) { return sum.currency.text() + " " + amountText(sum); }

std::string bookedSentence(const recording::BookedSum& sum) {
  const std::string rate = sum.rate ? " at the rate " + sum.rate->text() : "";
  return "Booked as " + codeAndSum(sum.amount) + rate + ".\n";
}

recording::BookedSum bookAsStated(Book& book, std::int64_t id, const EntryChange& stated,
                                  const CurrencyCode& currency, MadeRules& rules) {
  const auto booked = recording::acceptAs(book, id, stated, currency);
  if (!booked) {
    throw CommandFailure("its sum cannot be converted at its rate: give the sum in " +
                         currency.text() + " by --amount");
  }
  rules.add(booked->rule, booked->kind);
  return booked->sum;
}

std::vector<linux_platform::Command> editingCommands() {
  const linux_platform::CommandParameter ids = idsParameter();
  return {
      {"accept", "Book transactions that are in review", {ids}, accept},
      {"delete",
       "Delete transactions, after asking",
       {ids, {"--yes", "Delete them without asking", ParameterKind::flag}},
       remove},
      {"forget-texts",
       "Remove the texts of all messages, after asking",
       {{"--yes", "Remove them without asking", ParameterKind::flag}},
       forgetTexts},
  };
}

}  // namespace kivo::ledger
