// The home-screen widget's figures as text. Waits for no change: that is WidgetWatch.
#pragma once

#include <cstdint>
#include <string>

#include "store/shared_store.h"

namespace kivo {

/// What the widget shows, ready to read.
struct WidgetFigures {
  /// Amounts in the person's currency, with a minus when they are negative.
  std::string todayTotal;
  std::int64_t todayCount = 0;
  std::string runningTotal;
  /// How many messages wait in the queue.
  std::int64_t waitingMessages = 0;
  bool signedIn = false;

  bool operator==(const WidgetFigures&) const = default;
};

namespace WidgetView {

/// The figures in `store`. Those of an earlier day are none of today's; unreadable ones count as 0.
WidgetFigures read(const SharedStore& store);

/// The figures as lines of a name and a value, for programs to read.
std::string asLines(const WidgetFigures& figures);

/// How amounts and the count stand out.
enum class Figures { plain, bold };

/// The figures in a frame, for a terminal; below them, whether messages wait and whether somebody
/// has to sign in.
std::string asBox(const WidgetFigures& figures, Figures style);

}  // namespace WidgetView
}  // namespace kivo
