// Formats the home-screen widget's figures as text. WidgetWatch redraws them on changes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "phone/ledger_month.h"
#include "store/shared_store.h"

namespace kivo {

/// The figures that the widget shows.
struct WidgetFigures {
  /// Amounts in the user's currency, with a minus when negative.
  std::string todayTotal;
  /// Absent when unknown.
  std::optional<std::int64_t> todayCount = 0;
  std::string runningTotal;
  /// The number of queued texts.
  std::int64_t waitingMessages = 0;
  bool signedIn = false;
  /// Absent when the backend is another, or cannot be asked.
  std::optional<LedgerMonth> ledgerMonth = std::nullopt;

  bool operator==(const WidgetFigures&) const = default;
};

namespace WidgetView {

/// Reads the figures in `store`. Today's are 0 when the stored ones are of another day. Values that
/// cannot be parsed count as 0. The ledger is not asked.
WidgetFigures read(const SharedStore& store);

/// Takes today's and the month's figures from the book of the ledger on this machine, so that all
/// figures but the running total have one source. Without `month`, today's figures are unknown.
void takeFromBook(WidgetFigures& figures, const std::optional<LedgerMonth>& month);

/// Formats the figures as lines of name and value, for programs.
std::string asLines(const WidgetFigures& figures);

/// How amounts and the count are printed.
enum class Figures { plain, bold };

/// Formats the figures in a frame for a terminal, followed by whether messages wait or are to be
/// looked at, and whether the user has to sign in.
std::string asBox(const WidgetFigures& figures, Figures style);

}  // namespace WidgetView
}  // namespace kivo
