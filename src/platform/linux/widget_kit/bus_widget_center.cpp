#include "platform/linux/widget_kit/bus_widget_center.h"

#include "platform/linux/process/bus_message.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/bus_thread.h"
#include "platform/linux/process/session_bus.h"

namespace kivo::linux_platform {

void BusWidgetCenter::reloadAllTimelines() {
  bus_.thread().post([](DBusConnection* connection) {
    if (connection == nullptr) return;
    const BusObject& center = bus_names::widgetCenter;
    const BusMessage signal(
        dbus_message_new_signal(center.path, center.interface, bus_names::reloadAllTimelines));
    // One that cannot be sent is lost, as one that nobody hears.
    if (signal) dbus_connection_send(connection, signal.get(), nullptr);
  });
}

}  // namespace kivo::linux_platform
