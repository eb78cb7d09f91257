// The D-Bus interface by which the desktop's shell searches the shortcuts.
#pragma once

#include "platform/linux/bus/intents_interface.h"

namespace kivo::linux_platform::search_interface {

inline constexpr BusObject object{intents_interface::object.service,
                                  "/app/kivo/expenses/SearchProvider",
                                  "org.gnome.Shell.SearchProvider2"};

inline constexpr const char* getInitialResultSet = "GetInitialResultSet";
inline constexpr const char* getSubsearchResultSet = "GetSubsearchResultSet";
inline constexpr const char* getResultMetas = "GetResultMetas";
inline constexpr const char* activateResult = "ActivateResult";
inline constexpr const char* launchSearch = "LaunchSearch";

// What is said of a result.
inline constexpr const char* identifier = "id";
inline constexpr const char* name = "name";
inline constexpr const char* description = "description";
inline constexpr const char* icon = "icon";
/// The kind of icon that is given by names, of which the theme has some.
inline constexpr const char* themedIcon = "themed";

inline constexpr const char* failed = "org.freedesktop.DBus.Error.Failed";
inline constexpr const char* invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";

}  // namespace kivo::linux_platform::search_interface
