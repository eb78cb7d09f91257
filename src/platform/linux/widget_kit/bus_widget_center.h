// Asks the widgets over the session bus to reload. Waits for nobody.
#pragma once

#include "platform/widget_kit/widget_center.h"

namespace kivo::linux_platform {

class SessionBus;

/// Its signals go out as soon as the bus connection stands; `SessionBus::finish` waits for that.
class BusWidgetCenter : public platform::WidgetCenter {
 public:
  /// `bus` outlives this object.
  explicit BusWidgetCenter(SessionBus& bus) : bus_(bus) {}

  void reloadAllTimelines() override;

 private:
  SessionBus& bus_;
};

}  // namespace kivo::linux_platform
