#include "ledger/commands/account_commands.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>

#include "book/book_command.h"
#include "book/current_day.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/made_rules.h"
#include "ledger/commands/opened_book.h"
#include "overview/account_figures.h"
#include "overview/gap_words.h"
#include "platform/foundation/json_encoder.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::ledger {

using book::Account;
using book::Book;
using money::Day;
using money::Money;
using overview::AccountFigures;
using overview::Gap;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

std::string sumWithCodeFirst(const Money& sum) {
  return sum.currency.text() + " " + amountText(sum);
}

const char* balanceWord(AccountFigures::Balance kind) {
  switch (kind) {
    case AccountFigures::Balance::money:
      return "balance";
    case AccountFigures::Balance::limit:
      return "limit";
    case AccountFigures::Balance::debt:
      return "debt";
  }
  return "";
}

std::string linesOf(const AccountFigures& figures, const Day& today, std::size_t width) {
  std::string head = escapedControls(figures.account);
  const bool hasName = !figures.name.empty() && figures.name != figures.account;
  if (hasName) head += " " + escapedControls(figures.name);
  if (figures.balance) {
    head.append(": ").append(balanceWord(figures.kind)).append(" ");
    head += sumWithCodeFirst(*figures.balance) + " on " +
            overview::dayWords(*figures.balanceDate, today);
  } else {
    head += ": no balance in " + figures.currency.text();
  }
  std::string lines = linux_platform::wrappedTo(width, head);
  for (const Gap& gap : figures.gaps) {
    lines +=
        linux_platform::wrappedTo(width, overview::gapWords(gap, figures.currency, today), "  ");
  }
  return lines;
}

platform::JSONEncoder jsonOf(const AccountFigures& figures) {
  platform::JSONEncoder object;
  object.encodeString("account", figures.account);
  object.encodeString("name", figures.name);
  object.encodeString("currency", figures.currency.text());
  object.encodeString("kind", balanceWord(figures.kind));
  object.encodeString("balance", figures.balance ? amountText(*figures.balance) : "");
  object.encodeString("balance_date", figures.balanceDate ? figures.balanceDate->text() : "");
  std::vector<platform::JSONEncoder> gaps;
  for (const Gap& gap : figures.gaps) {
    platform::JSONEncoder& one = gaps.emplace_back();
    one.encodeString("from", gap.from.text());
    one.encodeString("to", gap.to.text());
    one.encodeString("amount", amountText(Money{gap.amount, figures.currency}));
  }
  object.encodeObjects("gaps", gaps);
  return object;
}

void say(const std::string& sentences) {
  print(linux_platform::wrappedTo(linux_platform::screenWidth(), sentences));
}

void showAccounts(const GivenParameters& parameters) {
  withBook([&](const Book& book) {
    std::vector<AccountFigures> all;
    book.atOneMoment(
        [&] { all = overview::accountFigures(book.accountEntries(), book.accounts()); });
    if (parameters.contains("--json")) {
      std::vector<platform::JSONEncoder> objects;
      for (const AccountFigures& figures : all) objects.push_back(jsonOf(figures));
      const std::string text = platform::JSONEncoder::arrayText(objects);
      return print(linux_platform::jsonForStandardOutput(text) + "\n");
    }
    if (all.empty()) return print("No message shows an account.\n");
    std::string lines;
    for (const AccountFigures& figures : all) {
      lines += linesOf(figures, book::currentDay(), linux_platform::screenWidth());
    }
    print(lines);
  });
}

// What is kept of the account `digits`. Throws CommandFailure when no entry has it, and nothing is
// kept.
Account requiredAccount(const Book& book, const std::string& digits) {
  for (const Account& account : book.accounts()) {
    if (account.digits == digits) return account;
  }
  const auto entries = book.accountEntries();
  const bool isKnown =
      std::any_of(entries.begin(), entries.end(),
                  [&](const book::AccountEntry& entry) { return entry.account == digits; });
  if (!isKnown) {
    throw CommandFailure("no payment is of the account " + escapedControls(digits) + "; " +
                         book::bookCommand("accounts") + " shows them");
  }
  return {.digits = digits};
}

void changeAccount(const std::string& command, const GivenParameters& parameters,
                   const std::function<void(Account&)>& change) {
  const std::string digits = given(parameters, "ACCOUNT").value();
  if (digits == book::cashAccount) {
    throw BadUsage("Cash is no account of a bank; " + book::bookCommand("accounts cash on") +
                   " keeps it, off does not");
  }
  withBook([&](Book& book) {
    book::UserCommand noted = userCommand(command, parameters);
    book.asCommand(noted, [&] {
      Account account = requiredAccount(book, digits);
      const Account before = account;
      change(account);
      if (account != before) book.keepAccount(account);
    });
  });
}

void nameAccount(const GivenParameters& parameters) {
  const std::string name = given(parameters, "NAME").value();
  if (!name.empty() && name.find_first_not_of("0123456789 ") == std::string::npos) {
    throw invalid("NAME", name, "a name with a letter, or empty for none");
  }
  if (name == book::cashAccount)
    throw invalid("NAME", name, "another one, since Cash is the account of cash");
  changeAccount("accounts name", parameters, [&](Account& account) { account.name = name; });
}

void markCredit(const GivenParameters& parameters) {
  changeAccount("accounts credit", parameters,
                [&](Account& account) { account.isCredit = !parameters.contains("--off"); });
}

void keepCash(Book& book, const GivenParameters& parameters) {
  book::UserCommand command = userCommand("accounts cash", parameters);
  book.asCommand(command, [&] {
    if (book.keepsCash()) return;
    book.keepAccount({.digits = book::cashAccount, .name = book::cashAccount});
  });
  say("Withdrawals of cash will be transfers to the account Cash, from which add spends. " +
      book::bookCommand("accounts") + " shows it.");
  const auto earlier = book.withdrawals();
  if (!changesEarlier(earlier.size(), parameters)) return;
  book.asCommand(command, [&] {
    for (const std::int64_t id : earlier) book.edit(id, {.kind = money::Kind::transfer});
  });
  tellChangedEarlier(earlier.size());
}

void switchCash(const GivenParameters& parameters) {
  const std::string state = given(parameters, "STATE").value();
  if (state != "on" && state != "off") throw invalid("STATE", state, "on or off");
  withBook([&](Book& book) {
    if (state == "on") return keepCash(book, parameters);
    if (parameters.contains("--also-earlier")) {
      throw BadUsage("accounts cash off leaves earlier payments as they are");
    }
    book::UserCommand command = userCommand("accounts cash", parameters);
    book.asCommand(command, [&] {
      if (book.keepsCash()) book.keepAccount({.digits = book::cashAccount});
    });
    say("Withdrawals of cash will be expenses. What is booked stays as it is.");
  });
}

}  // namespace

std::vector<linux_platform::Command> accountCommands() {
  const linux_platform::CommandParameter account{"ACCOUNT", "Its digits, as accounts shows them"};
  return {
      {"accounts",
       "Show your accounts, their balances and gaps",
       {{"--json", "Print JSON", ParameterKind::flag}},
       showAccounts},
      {"accounts name",
       "Name an account",
       {account, {"NAME", "The name; an empty one removes it"}},
       nameAccount},
      {"accounts credit",
       "Mark a card whose balance is a limit or a debt",
       {account, {"--off", "Its balance is money again", ParameterKind::flag}},
       markCredit},
      {"accounts cash",
       "Keep an account of cash, or keep none",
       {{"STATE", "on or off", ParameterKind::required,
         [] {
           return std::vector<std::string>{"on", "off"};
         }},
        alsoEarlierOption()},
       switchCash},
  };
}

}  // namespace kivo::ledger
