#include "platform/linux/widget_kit/bus_widget_center.h"

#include "platform/linux/bus/bus_message.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/bus/widget_center_interface.h"

namespace kivo::linux_platform {

void BusWidgetCenter::reloadAllTimelines() {
  const BusObject& center = widget_center_interface::object;
  bus_.send(ownedMessage(dbus_message_new_signal(center.path, center.interface,
                                                 widget_center_interface::reloadAllTimelines)));
}

}  // namespace kivo::linux_platform
