// The D-Bus signal that asks the widgets to reload.
#pragma once

#include "platform/linux/bus/bus_object.h"

namespace kivo::linux_platform::widget_center_interface {

/// Every program sends the signal from this path; there is no service to call.
inline constexpr BusObject object{"", "/app/kivo/WidgetCenter", "app.kivo.WidgetCenter1"};

inline constexpr const char* reloadAllTimelines = "ReloadAllTimelines";

}  // namespace kivo::linux_platform::widget_center_interface
