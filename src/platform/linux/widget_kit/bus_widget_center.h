// Sends the reload signal to the widgets over the session bus.
#pragma once

#include "platform/widget_kit/widget_center.h"

namespace kivo::linux_platform {

class SessionBus;

/// Signals are sent as soon as the bus is connected. `SessionBus::finish` waits until they are.
class BusWidgetCenter : public platform::WidgetCenter {
 public:
  /// `bus` must outlive this object.
  explicit BusWidgetCenter(SessionBus& bus) : bus_(bus) {}

  void reloadAllTimelines() override;

 private:
  SessionBus& bus_;
};

}  // namespace kivo::linux_platform
