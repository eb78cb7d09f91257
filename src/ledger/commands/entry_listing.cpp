#include "ledger/commands/entry_listing.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::ledger {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

// As they are stored, also a text that is neither a code nor a day.
std::string currencyOf(const LedgerEntry& entry) {
  return entry.impossibleCurrency.value_or(entry.amount ? entry.amount->currency.text() : "");
}

std::string dateOf(const LedgerEntry& entry) {
  return entry.impossibleDate.value_or(entry.date.text());
}

using linux_platform::columnsOf;
using linux_platform::escapedControls;
using linux_platform::paddedTo;

constexpr std::string_view gap = "  ";
constexpr std::size_t shortestName = 12;

using Row = std::array<std::string, 6>;
constexpr std::size_t amountColumn = 3;
constexpr std::size_t descriptionColumn = 4;

std::string sumText(const LedgerEntry& entry) {
  if (!entry.amount) return "unknown";
  return amountText(*entry.amount) + " " + currencyOf(entry);
}

enum class People { one, several };

People peopleOf(const std::vector<LedgerEntry>& entries) {
  const bool isOne = std::all_of(entries.begin(), entries.end(), [&](const LedgerEntry& entry) {
    return entry.userId == entries.front().userId;
  });
  return isOne ? People::one : People::several;
}

// Whose it is, when `people` are several, and the other entries that it belongs to, in words; empty
// when there is nothing to say.
std::string relations(const LedgerEntry& entry, People people) {
  std::string words;
  const auto add = [&words](const std::string& part) {
    words += (words.empty() ? "" : ", ") + part;
  };
  if (people == People::several) add("of " + escapedControls(entry.userId));
  if (entry.counterpart) add("other half: " + std::to_string(*entry.counterpart));
  if (entry.possibleDuplicateOf) add("looks like " + std::to_string(*entry.possibleDuplicateOf));
  return words;
}

Row rowOf(const LedgerEntry& entry, People people) {
  const std::string others = relations(entry, people);
  return {std::to_string(entry.id),
          escapedControls(dateOf(entry)),
          kindWord(entry),
          escapedControls(sumText(entry)),
          escapedControls(entry.description),
          escapedControls(entry.category) + (others.empty() ? "" : " (" + others + ")")};
}

std::string stateWords(const LedgerEntry& entry) {
  if (entry.state == LedgerEntry::State::booked) return "booked";
  if (entry.state == LedgerEntry::State::review) return "in review";
  const std::string_view wrong = impossibleValue(entry);
  return "set aside, since its " + std::string(wrong.empty() ? "kind or amount" : wrong) +
         " cannot be; edit or delete it";
}

// A text of several lines, each without control characters.
std::string linesOf(std::string_view text) {
  std::string lines;
  while (!text.empty()) {
    const std::string_view first = text.substr(0, text.find('\n'));
    lines += escapedControls(first) + "\n";
    text.remove_prefix(std::min(first.size() + 1, text.size()));
  }
  return lines;
}

using Widths = std::array<std::size_t, 6>;

std::string line(const Row& row, const Widths& widths) {
  std::string text;
  for (std::size_t column = 0; column + 1 < row.size(); ++column) {
    const std::size_t missing = widths[column] - std::min(widths[column], columnsOf(row[column]));
    if (column == amountColumn) text.append(missing, ' ').append(row[column]);
    if (column != amountColumn) {
      text += paddedTo(widths[column], linux_platform::cutTo(widths[column], row[column]));
    }
    text += gap;
  }
  return text + row.back() + "\n";
}

std::string rightAligned(std::size_t width, const std::string& text) {
  return std::string(width - std::min(width, columnsOf(text)), ' ') + text;
}

// The description of `entry` and its category, with its kind unless that is an expense, in `width`
// columns. The category has half of them, or what the description leaves.
std::string names(const LedgerEntry& entry, std::size_t width) {
  std::string category = escapedControls(entry.category);
  if (entry.kind != Kind::expense) category += std::string(", ") + kindWord(entry);
  const std::string description = escapedControls(entry.description);
  const std::size_t taken = columnsOf(description) + gap.size();
  const std::size_t room = std::max(width - std::min(width, taken), width / 2);
  category = linux_platform::cutTo(room, category);
  const std::size_t left = width - std::min(width, columnsOf(category) + gap.size());
  return linux_platform::cutTo(left, description) + std::string(gap) + category;
}

// Two or three lines for each entry, for a screen on which the table has no room.
std::string stacked(const std::vector<LedgerEntry>& entries, const Widths& widths,
                    std::size_t width) {
  const auto front = [&](const std::string& id, const std::string& date, const std::string& sum) {
    return paddedTo(widths[0], id) + std::string(gap) + paddedTo(widths[1], date) +
           std::string(gap) + rightAligned(widths[amountColumn], sum) + "\n";
  };
  const std::string indent(widths[0] + gap.size(), ' ');
  const People people = peopleOf(entries);
  std::string lines = front("ID", "DATE", "AMOUNT");
  for (const LedgerEntry& entry : entries) {
    lines += front(std::to_string(entry.id), dateOf(entry), escapedControls(sumText(entry)));
    lines += indent + names(entry, width - std::min(width, indent.size())) + "\n";
    if (const std::string others = relations(entry, people); !others.empty()) {
      lines += indent + others + "\n";
    }
  }
  return lines;
}

// The verbs of the sums, in their order: an entry counts as one of them. A refund counts as spent
// as well, below zero.
enum class Done { spent, refunded, received, transferred };

const char* doneText(Done done) {
  constexpr std::array texts{"Spent", "Refunded", "Received", "Transferred"};
  return texts.at(static_cast<std::size_t>(done));
}

Done doneBy(const LedgerEntry& entry) {
  if (entry.counterpart || entry.kind == Kind::transfer) return Done::transferred;
  if (entry.refund) return Done::refunded;
  return entry.kind == Kind::income ? Done::received : Done::spent;
}

// Absent when the sum of both does not fit.
std::optional<Money> sumThatFits(Money first, const Money& second) {
  try {
    first += second;
    return first;
  } catch (const std::overflow_error&) {
    return std::nullopt;
  }
}

}  // namespace

std::string EntryListing::table(const std::vector<LedgerEntry>& entries, std::size_t width) {
  std::vector<Row> rows{{"ID", "DATE", "KIND", "AMOUNT", "DESCRIPTION", "CATEGORY"}};
  const People people = peopleOf(entries);
  for (const LedgerEntry& entry : entries) rows.push_back(rowOf(entry, people));
  Widths widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], columnsOf(row[column]));
    }
  }
  std::size_t& description = widths[descriptionColumn];
  const std::size_t others =
      std::accumulate(widths.begin(), widths.end(), gap.size() * (widths.size() - 1)) - description;
  if (width < others + std::min(description, shortestName)) return stacked(entries, widths, width);
  description = std::min(description, width - others);
  std::string table;
  for (const Row& row : rows) table += line(row, widths);
  return table;
}

std::string EntryListing::sums(const std::vector<LedgerEntry>& entries) {
  if (entries.empty()) return "";
  // Absent when it does not fit.
  std::map<std::pair<money::CurrencyCode, Done>, std::optional<Money>> sums;
  const auto add = [&sums](Done done, const Money& amount) {
    const std::pair group(amount.currency, done);
    auto& sum = sums.try_emplace(group, Money{0, amount.currency}).first->second;
    if (sum) sum = sumThatFits(*sum, amount);
  };
  std::set<std::int64_t> ids;
  for (const LedgerEntry& entry : entries) ids.insert(entry.id);
  for (const LedgerEntry& entry : entries) {
    // A transfer counts once.
    if (entry.incoming && entry.counterpart && ids.contains(*entry.counterpart)) continue;
    const Done done = doneBy(entry);
    add(done, *entry.amount);
    if (done == Done::refunded)
      add(Done::spent, {-entry.amount->minorUnits, entry.amount->currency});
  }
  std::vector<std::pair<std::string, std::string>> rows;
  std::size_t width = 0;
  for (const auto& [group, sum] : sums) {
    const std::string text = sum ? money::sumText(*sum) : "too large " + group.first.text();
    width = std::max(width, text.size());
    rows.emplace_back(doneText(group.second), text);
  }
  std::string lines =
      "\n" + std::to_string(entries.size()) + (entries.size() == 1 ? " payment\n" : " payments\n");
  for (const auto& [done, sum] : rows) {
    constexpr std::size_t longest = std::string_view("Transferred").size();
    lines += paddedTo(longest, done) + std::string(gap) + rightAligned(width, sum) + "\n";
  }
  return lines;
}

std::string EntryListing::details(const LedgerEntry& entry) {
  std::string lines;
  const auto add = [&lines](std::string_view name, const std::string& value) {
    constexpr std::size_t nameWidth = 13;
    if (!value.empty()) lines += paddedTo(nameWidth, name) + escapedControls(value) + "\n";
  };
  add("ID", std::to_string(entry.id));
  add("State", stateWords(entry));
  add("Date", dateOf(entry));
  add("Kind", entry.refund ? "income, a refund" : kindText(entry.kind));
  add("Amount", sumText(entry));
  if (entry.original) add("Converted", "from " + sumText(*entry.original));
  if (entry.balance) add("Balance", sumText(*entry.balance));
  add("Description", entry.description);
  add("Category", entry.category);
  add("Payee", entry.payee);
  add("Account", entry.account);
  add("Reference", entry.reference);
  if (entry.counterpart) add("Other half", std::to_string(*entry.counterpart));
  if (entry.possibleDuplicateOf) add("Looks like", std::to_string(*entry.possibleDuplicateOf));
  add("Person", entry.userId);
  add("Key", entry.key);
  if (entry.text) lines += "\n" + linesOf(*entry.text);
  return lines;
}

platform::JSONEncoder EntryListing::json(const LedgerEntry& entry) {
  platform::JSONEncoder object;
  object.encodeString("id", std::to_string(entry.id));
  object.encodeString("key", entry.key);
  object.encodeString("person", entry.userId);
  object.encodeString("date", dateOf(entry));
  object.encodeString("kind", kindText(entry.kind));
  object.encodeString("amount", entry.amount ? amountText(*entry.amount) : "");
  object.encodeString("currency", currencyOf(entry));
  object.encodeString("description", entry.description);
  object.encodeString("category", entry.category);
  object.encodeString("account", entry.account);
  object.encodeString("reference", entry.reference);
  object.encodeString("state", stateText(entry.state));
  if (entry.original) {
    object.encodeString("original_amount", amountText(*entry.original));
    object.encodeString("original_currency", entry.original->currency.text());
  }
  if (entry.refund) object.encodeString("refund", "true");
  if (entry.counterpart) object.encodeString("counterpart", std::to_string(*entry.counterpart));
  if (entry.possibleDuplicateOf) {
    object.encodeString("possible_duplicate_of", std::to_string(*entry.possibleDuplicateOf));
  }
  return object;
}

}  // namespace kivo::ledger
