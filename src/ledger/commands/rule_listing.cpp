#include "ledger/commands/rule_listing.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"
#include "recording/rule_sentence.h"

namespace kivo::ledger {

using book::Rule;
using linux_platform::columnsOf;
using linux_platform::escapedControls;
using linux_platform::paddedTo;

namespace {

constexpr std::size_t gap = 2;
constexpr const char* numberTitle = "NUMBER";
constexpr const char* payeeTitle = "PAYEE";

using Row = std::array<std::string, 5>;

Row rowOf(const Rule& rule) {
  return {std::to_string(rule.number), escapedControls(rule.payee),
          escapedControls(rule.members.description.value_or("")),
          escapedControls(rule.members.category.value_or("")),
          rule.members.kind ? kindText(*rule.members.kind) : ""};
}

std::string line(const Row& row, const std::array<std::size_t, 5>& widths) {
  std::string text;
  for (std::size_t at = 0; at < row.size(); ++at) text += paddedTo(widths[at] + gap, row[at]);
  return text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
}

std::string stacked(const std::vector<Rule>& rules, std::size_t width) {
  const std::size_t numberWidth = std::string(numberTitle).size() + gap;
  const std::string indent(numberWidth, ' ');
  std::string lines = paddedTo(numberWidth, numberTitle) + payeeTitle + "\n";
  for (const Rule& rule : rules) {
    const std::string payee = linux_platform::wrappedTo(width, escapedControls(rule.payee), indent);
    lines += paddedTo(numberWidth, std::to_string(rule.number)) + payee.substr(indent.size());
    lines +=
        linux_platform::wrappedTo(width, escapedControls(recording::madeOf(rule.members)), indent);
  }
  return lines;
}

}  // namespace

std::string RuleListing::list(const std::vector<Rule>& rules, std::size_t width) {
  std::vector<Row> rows{{numberTitle, payeeTitle, "DESCRIPTION", "CATEGORY", "KIND"}};
  for (const Rule& rule : rules) rows.push_back(rowOf(rule));
  std::array<std::size_t, 5> widths{};
  for (const Row& row : rows) {
    for (std::size_t at = 0; at < row.size(); ++at) {
      widths[at] = std::max(widths[at], columnsOf(row[at]));
    }
  }
  const std::size_t whole =
      std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
  if (width < whole) return stacked(rules, width);
  std::string table;
  for (const Row& row : rows) table += line(row, widths);
  return table;
}

platform::JSONEncoder RuleListing::json(const Rule& rule) {
  platform::JSONEncoder object;
  object.encodeString("number", std::to_string(rule.number));
  object.encodeString("payee", rule.payee);
  object.encodeString("description", rule.members.description.value_or(""));
  object.encodeString("category", rule.members.category.value_or(""));
  object.encodeString("kind", rule.members.kind ? kindText(*rule.members.kind) : "");
  return object;
}

}  // namespace kivo::ledger
