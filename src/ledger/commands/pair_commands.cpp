#include "ledger/commands/pair_commands.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/editing_commands.h"
#include "ledger/commands/opened_book.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;

constexpr const char* otherIdName = "OTHER-ID";

using TwoEntries = std::pair<LedgerEntry, LedgerEntry>;

LedgerEntry entryGivenAs(const char* name, const Book& book, const GivenParameters& parameters) {
  const std::string text = given(parameters, name).value();
  const auto id = platform::integerFromText(text);
  if (!id) throw invalid(name, text, "the number of a transaction, as list shows it");
  auto entry = book.entry(*id);
  if (!entry) throw CommandFailure("no transaction has the ID " + std::to_string(*id));
  return *std::move(entry);
}

TwoEntries bothEntries(const Book& book, const GivenParameters& parameters) {
  TwoEntries both{entryGivenAs("ID", book, parameters),
                  entryGivenAs(otherIdName, book, parameters)};
  if (both.first.id == both.second.id) {
    throw BadUsage("both numbers are " + std::to_string(both.first.id) +
                   ": give those of two transactions");
  }
  return both;
}

std::string idOf(const LedgerEntry& entry) { return std::to_string(entry.id); }

// The reason why a pair has no place for `entry`; empty when there is none.
std::string hindrance(const LedgerEntry& entry) {
  const std::string id = idOf(entry);
  if (entry.counterpart) {
    const std::string other = std::to_string(*entry.counterpart);
    return id + " has the other half " + other + ": " +
           book::bookCommand("unpair " + id + " " + other) + " parts them";
  }
  if (entry.state == LedgerEntry::State::review) {
    return id + " is in review: " + book::bookCommand("accept " + id) + " books it";
  }
  if (entry.state != LedgerEntry::State::booked) return id + " is set aside";
  if (entry.refund) {
    return id + " is a refund: " + book::bookCommand("edit " + id + " --no-refund") +
           " makes it an income";
  }
  return "";
}

// The reason why two entries are no pair.
std::string whyUnfit(const TwoEntries& both) {
  for (const LedgerEntry* const entry : {&both.first, &both.second}) {
    if (std::string reason = hindrance(*entry); !reason.empty()) return reason;
  }
  const auto& [one, other] = both;
  if (one.amount != other.amount) {
    return "their sums differ: " + codeAndSum(*one.amount) + " and " + codeAndSum(*other.amount);
  }
  return std::string("both ") + (one.incoming ? "came in" : "went out") + ": " +
         book::bookCommand(one.incoming ? "edit ID --kind expense" : "edit ID --kind income") +
         " corrects one of them";
}

void pair(const GivenParameters& parameters) {
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("pair", parameters);
    std::string line;
    book.asCommand(command, [&] {
      const TwoEntries both = bothEntries(book, parameters);
      const auto& [one, other] = both;
      if (one.counterpart == other.id) {
        throw CommandFailure(idOf(one) + " and " + idOf(other) + " are one transfer already");
      }
      if (!book.pair(one.id, other.id)) throw CommandFailure(whyUnfit(both));
      line = idOf(one) + " and " + idOf(other) + " are one transfer of " + codeAndSum(*one.amount) +
             ".\n";
    });
    print(line);
  });
}

void unpair(const GivenParameters& parameters) {
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("unpair", parameters);
    std::string line;
    book.asCommand(command, [&] {
      const auto [one, other] = bothEntries(book, parameters);
      const std::string ids = idOf(one) + " and " + idOf(other);
      if (!book.unpair(one.id, other.id)) throw CommandFailure(ids + " are no pair");
      line = ids + " are no pair.\n";
    });
    print(line);
  });
}

}  // namespace

std::vector<linux_platform::Command> pairCommands() {
  const std::vector<linux_platform::CommandParameter> ids = {
      {"ID", "The number of one transaction, as list shows it"},
      {otherIdName, "The number of the other one"}};
  return {{"pair", "Join two messages of one own transfer", ids, pair},
          {"unpair", "Part two transactions that are no transfer", ids, unpair}};
}

std::string pairOffers(const Book& book) {
  constexpr std::size_t mostOffers = 10;
  const auto pairs = book.likelyPairs();
  if (pairs.empty()) return "";
  std::string lines;
  for (std::size_t at = 0; at < std::min(pairs.size(), mostOffers); ++at) {
    const std::string one = std::to_string(pairs[at].outgoing);
    const std::string other = std::to_string(pairs[at].incoming);
    lines.append("These two look like one transfer: ").append(one).append(" and ").append(other);
    const std::string words = std::string("pair ").append(one).append(" ").append(other);
    lines.append("\n  (").append(book::bookCommand(words)).append(")\n");
  }
  if (pairs.size() > mostOffers) {
    lines += "There are " + std::to_string(pairs.size() - mostOffers) + " more such pairs.\n";
  }
  return lines + book::bookCommand("unpair") +
         ", with the same numbers, says that they are two payments.\n";
}

}  // namespace kivo::ledger
