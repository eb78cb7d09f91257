#include "phone/widget_view.h"

#include <algorithm>
#include <vector>

#include "feedback/amount_formatter.h"
#include "feedback/widget_stats.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/process/terminal_text.h"
#include "platform/linux/process/text_columns.h"

namespace kivo {
namespace {

using linux_platform::columnsOf;
using linux_platform::paddedTo;

constexpr std::size_t smallestWidth = 24;

double readTotal(const SharedStore& store, StoreKey key) {
  return platform::doubleFromText(store.readText(key).value_or("")).value_or(0);
}

// The formatter drops the sign, which the words around an amount tell elsewhere.
std::string signedAmount(const SharedStore& store, double amount) {
  return (amount < 0 ? "-" : "") + AmountFormatter::format(store, amount);
}

std::string counted(std::int64_t count) {
  return platform::integerText(count) + (count == 1 ? " expense" : " expenses");
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t time = 0; time < times; ++time) text += piece;
  return text;
}

}  // namespace

WidgetFigures WidgetView::read(const SharedStore& store) {
  const bool ofToday = store.readText(StoreKeys::todayDateKey) == WidgetStats::today();
  const double total = ofToday ? readTotal(store, StoreKeys::todayTotal) : 0;
  const auto count = platform::integerFromText(store.readText(StoreKeys::todayCount).value_or(""));
  return {.todayTotal = signedAmount(store, total),
          .todayCount = ofToday ? count.value_or(0) : 0,
          .runningTotal = signedAmount(store, readTotal(store, StoreKeys::monthlyTotal))};
}

std::string WidgetView::asLines(const WidgetFigures& figures) {
  return "Today          " + figures.todayTotal + "\n" + "Expenses       " +
         platform::integerText(figures.todayCount) + "\n" + "Running total  " +
         figures.runningTotal + "\n";
}

std::string WidgetView::asBox(const WidgetFigures& figures) {
  std::vector<std::string> rows{"Kivo · today",
                                "",
                                figures.todayTotal,
                                counted(figures.todayCount),
                                "",
                                "Running total  " + figures.runningTotal};
  std::size_t width = smallestWidth;
  for (std::string& row : rows) {
    row = linux_platform::escapedSentence(row);
    width = std::max(width, columnsOf(row));
  }

  const std::string edge = repeated("─", width + 2);
  std::string box = "╭" + edge + "╮\n";
  for (const std::string& row : rows) box += "│ " + paddedTo(width, row) + " │\n";
  return box + "╰" + edge + "╯\n";
}

}  // namespace kivo
