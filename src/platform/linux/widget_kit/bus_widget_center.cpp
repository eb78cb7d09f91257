#include "platform/linux/widget_kit/bus_widget_center.h"

#include "platform/linux/bus/bus_message.h"
#include "platform/linux/bus/session_bus.h"

namespace kivo::linux_platform {

void BusWidgetCenter::reloadAllTimelines() {
  const BusObject& center = bus_names::widgetCenter;
  bus_.send(ownedMessage(
      dbus_message_new_signal(center.path, center.interface, bus_names::reloadAllTimelines)));
}

}  // namespace kivo::linux_platform
