// The names by which the phone's programs find each other on the session bus. Calls nothing.
#pragma once

namespace kivo::linux_platform {

/// One object of a service, and the interface that is spoken with it.
struct BusObject {
  const char* service;
  const char* path;
  const char* interface;
};

namespace bus_names {

/// The phone's notification center.
inline constexpr BusObject notificationCenter{
    "app.kivo.NotificationCenter", "/app/kivo/NotificationCenter", "app.kivo.NotificationCenter1"};

/// The extension's intents, for the automation and voice layers.
inline constexpr BusObject intents{"app.kivo.expenses.Intents", "/app/kivo/expenses/Intents",
                                   "app.kivo.Intents1"};

/// The intents' shortcuts, for the search of the desktop's shell.
inline constexpr BusObject search{intents.service, "/app/kivo/expenses/SearchProvider",
                                  "org.gnome.Shell.SearchProvider2"};

/// Every program sends its reload signals from this path; there is no service to call.
inline constexpr BusObject widgetCenter{"", "/app/kivo/WidgetCenter", "app.kivo.WidgetCenter1"};
inline constexpr const char* reloadAllTimelines = "ReloadAllTimelines";

/// What shows notifications on the desktop.
inline constexpr BusObject desktopNotifications{"org.freedesktop.Notifications",
                                                "/org/freedesktop/Notifications",
                                                "org.freedesktop.Notifications"};

/// The bus itself.
inline constexpr BusObject bus{"org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus"};

}  // namespace bus_names
}  // namespace kivo::linux_platform
