#include "platform/linux/widget_kit/bus_widget_center.h"

#include <memory>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_thread.h"
#include "platform/linux/process/session_bus.h"

namespace kivo::linux_platform {

void BusWidgetCenter::reloadAllTimelines() {
  bus_.thread().post([](StandingConnection* standing) {
    if (standing == nullptr) return;
    const BusObject& center = bus_names::widgetCenter;
    const auto sender = sdbus::createObject(standing->connection(), center.path);
    sender->emitSignal(sender->createSignal(center.interface, bus_names::reloadAllTimelines));
  });
}

}  // namespace kivo::linux_platform
