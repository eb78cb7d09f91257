// The D-Bus interface of the desktop's notification server.
#pragma once

#include <cstdint>

#include "platform/linux/bus/bus_object.h"

namespace kivo::linux_platform::desktop_notifications_interface {

inline constexpr BusObject object{"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                  "org.freedesktop.Notifications"};

inline constexpr const char* getCapabilities = "GetCapabilities";
inline constexpr const char* notify = "Notify";
inline constexpr const char* actionInvoked = "ActionInvoked";
inline constexpr const char* notificationClosed = "NotificationClosed";

// Capabilities of a server on which the content of a notification depends.
inline constexpr const char* bodyMarkup = "body-markup";
inline constexpr const char* sound = "sound";

/// The key of the action that a click on the notification itself invokes.
inline constexpr const char* defaultAction = "default";

inline constexpr std::uint32_t closedByPerson = 2;

}  // namespace kivo::linux_platform::desktop_notifications_interface
