#include "overview/summary_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "book/book_command.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

using linux_platform::columnsOf;
using money::Money;

namespace {

std::string ignoredLine(const PeriodSummary& summary) {
  if (summary.ignored == 0) return "";
  const bool one = summary.ignored == 1;
  return "\n" + std::to_string(summary.ignored) + (one ? " message" : " messages") + " with a sum" +
         (one ? " was" : " were") + " not booked:\n" + book::bookCommand("ignored") + "\n";
}

std::string reviewLine(const PeriodSummary& summary) {
  if (summary.review == 0) return "";
  const bool one = summary.review == 1;
  return "\n" + std::to_string(summary.review) +
         (one ? " transaction waits" : " transactions wait") + " in review:\n" +
         book::bookCommand("review") + "\n";
}

std::string leftOutLines(const PeriodSummary& summary, const SummaryView::Look& look) {
  const std::string note = leftOutNote(summary.leftOut);
  return note.empty() ? "" : "\n" + linux_platform::wrappedTo(look.width, note);
}

}  // namespace

RightAligned::RightAligned(std::string heading) : texts_{std::move(heading)} {
  width_ = columnsOf(texts_[0]);
}

void RightAligned::add(const std::string& sum) {
  // In a locale with digits of a right-to-left script, a mark keeps two sums from changing places.
  constexpr std::string_view leftToRight = "\u200e";
  const bool isAscii = std::all_of(sum.begin(), sum.end(), [](char c) { return c > 0; });
  texts_.push_back(isAscii ? sum : sum + std::string(leftToRight));
  width_ = std::max(width_, columnsOf(sum));
}

std::string RightAligned::at(std::size_t row) const {
  return std::string(width_ - columnsOf(texts_[row]), ' ') + texts_[row];
}

PairedSums::PairedSums(const money::CurrencyCode& currency, std::string now, std::string before)
    : sums_(currency), now_(std::move(now)), before_(std::move(before)) {}

void PairedSums::add(const Money& now, const Money& before) {
  now_.add(sums_.plain(now));
  before_.add(sums_.plain(before));
}

std::string PairedSums::at(std::size_t row) const {
  return now_.at(row) + std::string(SummaryParts::gap) + before_.at(row);
}

std::string SummaryParts::bold(const std::string& text, const SummaryView::Look& look) {
  if (look.style == SummaryView::Look::Style::plain) return text;
  return "\x1b[1m" + text + "\x1b[0m";
}

std::string SummaryParts::inBarColour(const std::string& text, const SummaryView::Look& look) {
  if (look.style == SummaryView::Look::Style::plain) return text;
  return "\x1b[36m" + text + "\x1b[0m";
}

std::string SummaryParts::bar(std::int64_t part, std::int64_t whole, std::size_t columns,
                              const SummaryView::Look& look) {
  constexpr std::array<std::string_view, 8> eighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const double share = static_cast<double>(std::max<std::int64_t>(part, 0)) /
                       static_cast<double>(std::max<std::int64_t>(whole, 1));
  auto left = static_cast<std::size_t>(std::lround(share * static_cast<double>(columns * 8)));
  if (part > 0) left = std::max<std::size_t>(left, 1);
  std::string drawn;
  for (; left >= 8; left -= 8) drawn += "█";
  drawn += eighths.at(left);
  return inBarColour(drawn, look) + std::string(columns - columnsOf(drawn), ' ');
}

std::size_t SummaryParts::roomIn(const SummaryView::Look& look, std::size_t taken) {
  return look.width - std::min(look.width, taken);
}

std::string SummaryParts::section(const char* heading, const std::string& lines,
                                  const SummaryView::Look& look) {
  return lines.empty() ? "" : "\n" + bold(heading, look) + "\n" + lines;
}

std::string SummaryParts::refunds(const MovedSums& sums, const SummaryView::Look& look,
                                  std::size_t taken) {
  if (sums.refunded.minorUnits == 0) return "";
  const SumFormat format(sums.expense.currency);
  Money before = sums.expense;
  before += sums.refunded;
  const std::string note =
      "(" + format.plain(before) + " less " + format.plain(sums.refunded) + " refunded)";
  if (columnsOf(note) < roomIn(look, taken)) return " " + note;
  const std::string lines = linux_platform::wrappedTo(look.width, note);
  return "\n" + lines.substr(0, lines.size() - 1);
}

std::string SummaryParts::otherCurrencies(const PeriodSummary& summary) {
  std::string lines;
  for (const MovedSums& other : summary.otherCurrencies) {
    const SumFormat sums(other.expense.currency);
    const std::string code = other.expense.currency.text() + " ";
    for (const auto& [sum, verb] : {std::pair(&other.expense, " spent\n"),
                                    {&other.income, " received\n"},
                                    {&other.transfer, " transferred\n"}}) {
      if (sum->minorUnits != 0) lines += code + sums.plain(*sum) + verb;
    }
  }
  return lines;
}

std::string SummaryParts::notes(const PeriodSummary& summary, const SummaryView::Look& look) {
  return leftOutLines(summary, look) + reviewLine(summary) + ignoredLine(summary);
}

}  // namespace kivo::overview
