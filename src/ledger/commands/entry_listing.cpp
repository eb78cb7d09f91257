#include "ledger/commands/entry_listing.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
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

std::string likeness(const LedgerEntry& entry) {
  if (!entry.possibleDuplicateOf) return "";
  return "looks like " + std::to_string(*entry.possibleDuplicateOf);
}

Row rowOf(const LedgerEntry& entry) {
  const std::string like = likeness(entry);
  return {std::to_string(entry.id),
          escapedControls(dateOf(entry)),
          kindText(entry.kind),
          escapedControls(sumText(entry)),
          escapedControls(entry.description),
          escapedControls(entry.category) + (like.empty() ? "" : " (" + like + ")")};
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
  if (entry.kind != Kind::expense) category += std::string(", ") + kindText(entry.kind);
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
  std::string lines = front("ID", "DATE", "AMOUNT");
  for (const LedgerEntry& entry : entries) {
    lines += front(std::to_string(entry.id), dateOf(entry), escapedControls(sumText(entry)));
    lines += indent + names(entry, width - std::min(width, indent.size())) + "\n";
    if (const std::string like = likeness(entry); !like.empty()) lines += indent + like + "\n";
  }
  return lines;
}

const char* doneText(Kind kind) {
  if (kind == Kind::expense) return "Spent";
  return kind == Kind::income ? "Received" : "Transferred";
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
  for (const LedgerEntry& entry : entries) rows.push_back(rowOf(entry));
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
  // By currency and kind; absent when it does not fit.
  std::map<std::pair<money::CurrencyCode, Kind>, std::optional<Money>> sums;
  for (const LedgerEntry& entry : entries) {
    const money::CurrencyCode currency = entry.amount->currency;
    auto& sum = sums.try_emplace({currency, entry.kind}, Money{0, currency}).first->second;
    if (sum) sum = sumThatFits(*sum, *entry.amount);
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
  add("Kind", kindText(entry.kind));
  add("Amount", sumText(entry));
  if (entry.original) add("Converted", "from " + sumText(*entry.original));
  if (entry.balance) add("Balance", sumText(*entry.balance));
  add("Description", entry.description);
  add("Category", entry.category);
  add("Payee", entry.payee);
  add("Account", entry.account);
  add("Reference", entry.reference);
  if (entry.possibleDuplicateOf) add("Looks like", std::to_string(*entry.possibleDuplicateOf));
  add("Key", entry.key);
  if (entry.text) lines += "\n" + linesOf(*entry.text);
  return lines;
}

platform::JSONEncoder EntryListing::json(const LedgerEntry& entry) {
  platform::JSONEncoder object;
  object.encodeString("id", std::to_string(entry.id));
  object.encodeString("key", entry.key);
  object.encodeString("date", dateOf(entry));
  object.encodeString("kind", kindText(entry.kind));
  object.encodeString("amount", entry.amount ? amountText(*entry.amount) : "");
  object.encodeString("currency", currencyOf(entry));
  object.encodeString("description", entry.description);
  object.encodeString("category", entry.category);
  object.encodeString("account", entry.account);
  object.encodeString("reference", entry.reference);
  object.encodeString("state", stateText(entry.state));
  if (entry.possibleDuplicateOf) {
    object.encodeString("possible_duplicate_of", std::to_string(*entry.possibleDuplicateOf));
  }
  return object;
}

}  // namespace kivo::ledger
