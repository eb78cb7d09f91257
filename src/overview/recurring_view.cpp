#include "overview/recurring_view.h"

#include <algorithm>
#include <string_view>

#include "overview/summary_parts.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

using linux_platform::columnsOf;
using linux_platform::cutTo;
using linux_platform::escapedControls;
using linux_platform::paddedTo;

namespace {

using SummaryParts::gap;
using SummaryParts::shortestName;

constexpr std::size_t dayWidth = 10;

std::size_t roomOf(std::size_t width, std::size_t taken) { return width - std::min(width, taken); }

}  // namespace

platform::JSONEncoder RecurringView::json(const RecurringPayment& payment) {
  platform::JSONEncoder object;
  object.encodeString("description", payment.description);
  object.encodeString("amount", amountText(payment.amount));
  object.encodeString("currency", payment.amount.currency.text());
  object.encodeString("category", payment.category);
  object.encodeString("last", payment.last.text());
  object.encodeString("next", payment.next.text());
  object.encodeString("times", std::to_string(payment.times));
  return object;
}

std::string RecurringView::table(const std::vector<RecurringPayment>& payments, std::size_t width) {
  RightAligned amounts("AMOUNT");
  RightAligned times("TIMES");
  std::size_t longest = std::string_view("DESCRIPTION").size();
  for (const RecurringPayment& payment : payments) {
    amounts.add(sumText(payment.amount));
    times.add(std::to_string(payment.times));
    longest = std::max(longest, columnsOf(escapedControls(payment.description)));
  }
  const std::size_t few = dayWidth + gap.size() + amounts.width() + gap.size();
  const std::size_t all = few + dayWidth + gap.size() + times.width() + gap.size();
  const bool isWide = roomOf(width, all) >= shortestName + gap.size() + shortestName;
  const std::size_t room = std::max(shortestName, roomOf(width, isWide ? all : few));
  const std::size_t name = isWide ? std::min(longest, room - gap.size() - shortestName) : room;
  std::string lines;
  const auto add = [&](std::size_t row, const std::string& next, const std::string& last,
                       const std::string& description, const std::string& category) {
    lines += paddedTo(dayWidth, next) + std::string(gap);
    if (isWide) lines += paddedTo(dayWidth, last) + std::string(gap);
    lines += amounts.at(row) + std::string(gap);
    if (isWide) lines += times.at(row) + std::string(gap);
    const std::string shown = cutTo(name, escapedControls(description));
    if (!isWide) {
      lines += shown + "\n";
      return;
    }
    lines += paddedTo(name, shown) + std::string(gap) +
             cutTo(room - name - gap.size(), escapedControls(category)) + "\n";
  };
  add(0, "NEXT", "LAST", "DESCRIPTION", "CATEGORY");
  for (std::size_t at = 0; at < payments.size(); ++at) {
    const RecurringPayment& payment = payments[at];
    add(at + 1, payment.next.text(), payment.last.text(), payment.description, payment.category);
  }
  return lines;
}

std::string RecurringView::dueLines(const std::vector<RecurringPayment>& payments,
                                    const money::Day& today, std::size_t width) {
  std::string lines;
  for (const RecurringPayment& payment : payments) {
    const std::string words = dueWords(payment, today);
    if (words.empty()) continue;
    const std::string name = escapedControls(payment.description);
    const std::size_t room = std::max(shortestName, roomOf(width, columnsOf(words) + 1));
    // A mark keeps the order of a line that begins with a name from right to left.
    const bool isAscii = std::all_of(name.begin(), name.end(), [](char c) { return c > 0; });
    lines += (isAscii ? "" : "\u200e") + cutTo(room, name) + " " + words + "\n";
  }
  return lines;
}

}  // namespace kivo::overview
