// Reloads the home-screen widgets. The figures themselves are in the shared store.
#pragma once

#include "platform/foundation/process_wide.h"

namespace kivo::platform {

/// Thread-safe.
class WidgetCenter {
 public:
  static WidgetCenter& shared() { return ProcessWide<WidgetCenter>::object(); }

  virtual ~WidgetCenter() = default;

  /// Asks all widgets to read their figures again. Returns at once. Does nothing without a session
  /// bus, and reports no failure.
  virtual void reloadAllTimelines() = 0;
};

}  // namespace kivo::platform
