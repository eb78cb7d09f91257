// The way to the home-screen widgets. Carries no figures: a widget reads the shared store.
#pragma once

#include "platform/foundation/process_wide.h"

namespace kivo::platform {

/// Usable from any thread.
class WidgetCenter {
 public:
  static WidgetCenter& shared() { return ProcessWide<WidgetCenter>::object(); }

  virtual ~WidgetCenter() = default;

  /// Asks all widgets to read their figures again. Returns at once; without a session bus nobody is
  /// asked, and nobody is told.
  virtual void reloadAllTimelines() = 0;
};

}  // namespace kivo::platform
