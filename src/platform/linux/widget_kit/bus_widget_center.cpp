#include "platform/linux/widget_kit/bus_widget_center.h"

#include <systemd/sd-bus.h>

#include "platform/linux/process/bus_thread.h"
#include "platform/linux/process/session_bus.h"

namespace kivo::linux_platform {

void BusWidgetCenter::reloadAllTimelines() {
  bus_.thread().post([](StandingConnection* standing) {
    if (standing == nullptr) return;
    const BusObject& center = bus_names::widgetCenter;
    // One that cannot be sent is lost, as one that nobody hears.
    sd_bus_emit_signal(standing->bus(), center.path, center.interface,
                       bus_names::reloadAllTimelines, nullptr);
  });
}

}  // namespace kivo::linux_platform
