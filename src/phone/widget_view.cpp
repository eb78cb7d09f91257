#include "phone/widget_view.h"

#include <algorithm>
#include <vector>

#include "feedback/amount_formatter.h"
#include "feedback/widget_stats.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo {
namespace {

using linux_platform::columnsOf;
using linux_platform::paddedTo;

constexpr std::size_t smallestWidth = 24;
constexpr const char* unknown = "unknown";

// The formatter drops the sign; elsewhere the words around the amount express it.
std::string signedAmount(const SharedStore& store, double amount) {
  return (amount < 0 ? "-" : "") + AmountFormatter::format(store, amount);
}

std::string counted(std::int64_t count) {
  return platform::integerText(count) + (count == 1 ? " expense" : " expenses");
}

std::string countedAsWaiting(std::int64_t count) {
  return platform::integerText(count) +
         (count == 1 ? " message waits to be sent" : " messages wait to be sent");
}

std::string countedAsToReview(std::int64_t count) {
  return platform::integerText(count) +
         (count == 1 ? " message needs a look" : " messages need a look");
}

// A line of the box: words, followed by a figure that may be bold.
struct Row {
  std::string words;
  std::string figure;
};

std::vector<Row> rowsOf(const WidgetFigures& figures) {
  std::vector<Row> rows{{"Kivo · today", ""}, {"", ""}, {"", figures.todayTotal}};
  if (figures.todayCount) rows.push_back({counted(*figures.todayCount), ""});
  rows.push_back({"", ""});
  const auto& month = figures.ledgerMonth;
  if (month) rows.push_back({"This month     ", month->expenses});
  rows.push_back({"Running total  ", figures.runningTotal});
  const bool needsALook = month && month->toReview > 0;
  if (figures.waitingMessages > 0 || needsALook || !figures.signedIn) rows.push_back({"", ""});
  if (needsALook) rows.push_back({countedAsToReview(month->toReview), ""});
  if (figures.waitingMessages > 0) rows.push_back({countedAsWaiting(figures.waitingMessages), ""});
  if (!figures.signedIn) {
    rows.push_back({"Not signed in; see", ""});
    rows.push_back({"kivo-phone sign-in --help", ""});
  }
  return rows;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t time = 0; time < times; ++time) text += piece;
  return text;
}

}  // namespace

WidgetFigures WidgetView::read(const SharedStore& store) {
  const bool ofToday = store.readText(StoreKeys::todayDateKey) == WidgetStats::today();
  const double total = ofToday ? WidgetStats::readTotal(store, StoreKeys::todayTotal) : 0;
  return {
      .todayTotal = signedAmount(store, total),
      .todayCount = ofToday ? WidgetStats::readCount(store, StoreKeys::todayCount) : 0,
      .runningTotal = signedAmount(store, WidgetStats::readTotal(store, StoreKeys::monthlyTotal)),
      .waitingMessages =
          std::max<std::int64_t>(0, WidgetStats::readCount(store, StoreKeys::pendingSmsQueueCount)),
      .signedIn = store.readNonEmptyText(StoreKeys::userId).has_value() &&
                  store.readNonEmptyText(StoreKeys::supabaseUrl).has_value()};
}

void WidgetView::takeFromBook(WidgetFigures& figures, const std::optional<LedgerMonth>& month) {
  figures.ledgerMonth = month;
  figures.todayTotal = month ? month->todayTotal : unknown;
  figures.todayCount.reset();
  if (month) figures.todayCount = month->todayCount;
}

std::string WidgetView::asLines(const WidgetFigures& figures) {
  const std::string count =
      figures.todayCount ? platform::integerText(*figures.todayCount) : unknown;
  std::string lines = "Today          " + figures.todayTotal + "\n" + "Expenses       " + count +
                      "\n" + "Running total  " + figures.runningTotal + "\n" + "Waiting        " +
                      platform::integerText(figures.waitingMessages) + "\n" + "Signed in      " +
                      (figures.signedIn ? "yes" : "no") + "\n";
  if (const auto& month = figures.ledgerMonth) {
    lines += "This month     " + month->expenses + "\n" + "To review      " +
             platform::integerText(month->toReview) + "\n";
  }
  return lines;
}

std::string WidgetView::asBox(const WidgetFigures& figures, Figures style) {
  std::vector<Row> rows = rowsOf(figures);
  std::size_t width = smallestWidth;
  for (Row& row : rows) {
    row.words = linux_platform::escapedSentence(row.words);
    row.figure = linux_platform::escapedSentence(row.figure);
    width = std::max(width, columnsOf(row.words + row.figure));
  }

  const std::string_view begin = style == Figures::bold ? "\x1b[1m" : "";
  const std::string_view end = style == Figures::bold ? "\x1b[0m" : "";
  const std::string edge = repeated("─", width + 2);
  std::string box = "╭" + edge + "╮\n";
  for (const Row& row : rows) {
    const std::string text = paddedTo(width, row.words + row.figure);
    box += "│ " + row.words;
    if (!row.figure.empty()) box.append(begin).append(row.figure).append(end);
    box += text.substr(row.words.size() + row.figure.size()) + " │\n";
  }
  return box + "╰" + edge + "╯\n";
}

}  // namespace kivo
