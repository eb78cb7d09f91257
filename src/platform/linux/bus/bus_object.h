// An object on the bus, and the bus itself.
#pragma once

namespace kivo::linux_platform {

/// An object of a service, and one of its interfaces.
struct BusObject {
  /// A bus name.
  const char* service;
  const char* path;
  const char* interface;
};

/// The bus itself.
inline constexpr BusObject messageBus{"org.freedesktop.DBus", "/org/freedesktop/DBus",
                                      "org.freedesktop.DBus"};

}  // namespace kivo::linux_platform
