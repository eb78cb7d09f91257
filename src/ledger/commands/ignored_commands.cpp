#include "ledger/commands/ignored_commands.h"

#include <optional>
#include <string>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/editing_commands.h"
#include "ledger/commands/ignored_listing.h"
#include "ledger/commands/opened_book.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "recording/ignored_booking.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::IgnoredMessage;
using money::CurrencyCode;
using money::Money;
using recording::BookedSum;
using recording::StatedParts;
using recording::StatedReading;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

void showIgnored(const GivenParameters& parameters) {
  withBook([&](const Book& book) {
    const auto messages = book.ignored();
    if (parameters.contains("--json")) {
      std::vector<platform::JSONEncoder> objects;
      for (const IgnoredMessage& message : messages) {
        objects.push_back(IgnoredListing::json(message));
      }
      const std::string text = platform::JSONEncoder::arrayText(objects);
      return print(linux_platform::jsonForStandardOutput(text) + "\n");
    }
    if (messages.empty()) return print("There is no ignored message.\n");
    print(IgnoredListing::list(messages, linux_platform::screenWidth()));
    if (!linux_platform::onTerminal()) return;
    print("To book one: " + book::bookCommand("book NUMBER") +
          "\nTo have messages like it booked:\n" + book::bookCommand("teach ignored:NUMBER") +
          "\n");
  });
}

// Reads --amount in --currency, else in the currency of the sum of the message that it states, else
// in the book's.
std::optional<Money> statedAmount(const GivenParameters& parameters, const IgnoredMessage& message,
                                  const CurrencyCode& currency) {
  const auto text = given(parameters, "--amount");
  const auto stated = givenCurrency(parameters, "--currency", "EGP");
  if (stated && !text) throw BadUsage("--currency needs --amount");
  if (!text) return std::nullopt;
  if (stated) return sumFrom(*text, *stated);
  for (const auto& sum : recording::sumsIn(message.text, currency)) {
    if (sum && isBookable(*sum) && money::moneyFromText(*text, sum->currency) == sum) return sum;
  }
  return sumFrom(*text, currency);
}

// Throws when a part of `stated` has to be given.
void requireParts(const StatedReading& stated) {
  const bool hasAmount = stated.message.reading.amount.has_value();
  if (!stated.kind && !hasAmount) {
    throw BadUsage("its kind and its sum cannot be read: give --kind and --amount");
  }
  if (!stated.kind) {
    throw BadUsage("its kind cannot be read: give --kind expense, income or transfer");
  }
  if (!hasAmount) throw BadUsage("its sum cannot be read: give --amount");
}

std::int64_t givenNumber(const GivenParameters& parameters) {
  const std::string text = given(parameters, "NUMBER").value();
  const auto number = platform::integerFromText(text);
  if (!number)
    throw invalid("NUMBER", text, "a number, as " + book::bookCommand("ignored") + " shows it");
  return *number;
}

void bookIgnored(const GivenParameters& parameters) {
  const std::int64_t number = givenNumber(parameters);
  const CurrencyCode currency = requiredBookCurrency();
  StatedParts parts{.kind = givenKind(parameters), .payee = givenText(parameters, "--payee")};
  const book::EntryChange change{.kind = parts.kind,
                                 .category = givenText(parameters, "--category")};
  withBook([&](Book& book) {
    const IgnoredMessage message = requiredIgnored(book, number);
    parts.amount = statedAmount(parameters, message, currency);
    const StatedReading stated =
        recording::statedReading(book, message, parts, recording::TemplateFile::reader(), currency);
    requireParts(stated);
    std::optional<BookedSum> sum;
    MadeRules rules;
    book::UserCommand command = userCommand("book", parameters);
    book.asCommand(command, [&] {
      const auto entry = recording::addIgnored(book, number, stated.message);
      if (!entry) throw CommandFailure("it was booked or removed meanwhile");
      sum = bookAsStated(book, entry->id, change, currency, rules);
    });
    print(bookedSentence(*sum) + rules.sentences());
  });
}

}  // namespace

std::vector<linux_platform::Command> ignoredCommands() {
  constexpr auto optional = ParameterKind::optional;
  return {
      {"ignored",
       "Show messages with a sum that were not booked",
       {{"--json", "Print JSON", ParameterKind::flag}},
       showIgnored},
      {"book",
       "Book an ignored message",
       {{"NUMBER", "The message's number, as ignored shows it"},
        {"--kind", "expense, income or transfer", optional, kindNames},
        {"--amount", "The sum, as 1,189.50", optional},
        {"--currency", "Its currency, as EGP", optional},
        {"--payee", "The other party", optional},
        {"--category", "The category, which holds for the payee from then on", optional}},
       bookIgnored},
  };
}

}  // namespace kivo::ledger
