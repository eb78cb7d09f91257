#include "ledger/commands/adding_command.h"

#include <optional>
#include <string>

#include "book/current_day.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/editing_commands.h"
#include "ledger/commands/opened_book.h"
#include "platform/linux/terminal/command_output.h"
#include "recording/hand_entry.h"

namespace kivo::ledger {

using book::Book;
using book::cashAccount;
using recording::HandEntry;

namespace {

using linux_platform::BadUsage;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

HandEntry paymentFrom(const GivenParameters& parameters, const money::CurrencyCode& currency) {
  const std::string payee = givenText(parameters, "--payee").value();
  if (payee.find_first_not_of(" \t\n") == std::string::npos) throw BadUsage("--payee is blank");
  const auto statedIn = givenCurrency(parameters, "--currency", "EGP").value_or(currency);
  return {.userId = givenUser(parameters),
          .date = givenDay(parameters, "--date").value_or(book::currentDay()),
          .kind = givenKind(parameters).value_or(money::Kind::expense),
          .amount = sumFrom(given(parameters, "--amount").value(), statedIn),
          .payee = payee,
          .account = givenAccount(parameters).value_or("")};
}

void add(const GivenParameters& parameters) {
  const money::CurrencyCode currency = requiredBookCurrency();
  HandEntry payment = paymentFrom(parameters, currency);
  const book::EntryChange stated{.kind = givenKind(parameters),
                                 .category = givenText(parameters, "--category")};
  withBook([&](Book& book) {
    std::string line;
    MadeRules rules;
    book::UserCommand command = userCommand("add", parameters);
    book.asCommand(command, [&] {
      const bool isOwn = payment.kind == money::Kind::transfer;
      if (payment.account.empty() && !isOwn && book.keepsCash()) payment.account = cashAccount;
      const std::int64_t id = recording::addByHand(book, payment).id;
      line = bookedSentence(bookAsStated(book, id, stated, currency, rules));
      const auto like = book.entry(id).value().possibleDuplicateOf;
      line.insert(line.size() - 1, " ID " + std::to_string(id) +
                                       (like ? ", looks like " + std::to_string(*like) : "") + ".");
    });
    print(line + rules.sentences());
  });
}

}  // namespace

linux_platform::Command addingCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {"add",
          "Enter a payment by hand, such as one in cash",
          {{"--amount", "The sum, as 1,189.50"},
           {"--payee", "The merchant or the other party"},
           {"--date", "The day, as 2026-11-21; today when not given", optional},
           {"--category", "The category; it holds for the payee from then on", optional},
           {"--kind", "expense, income or transfer; expense when not given", optional, kindNames},
           {"--account", "The account's digits; Cash when it is kept and none given", optional},
           {"--currency", "The currency's code, as USD; the book's when not given", optional}},
          add};
}

}  // namespace kivo::ledger
