// The D-Bus interface of the phone's notification center.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/linux/bus/bus_object.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform::notification_center_interface {

inline constexpr BusObject object{"app.kivo.NotificationCenter", "/app/kivo/NotificationCenter",
                                  "app.kivo.NotificationCenter1"};

inline constexpr const char* authorizationStatus = "AuthorizationStatus";
inline constexpr const char* setAuthorizationStatus = "SetAuthorizationStatus";
inline constexpr const char* add = "Add";
inline constexpr const char* pending = "Pending";

// Keys of a notification's content, and the only sound there is.
inline constexpr const char* title = "title";
inline constexpr const char* body = "body";
inline constexpr const char* sound = "sound";
inline constexpr const char* userInfo = "userInfo";
inline constexpr const char* defaultSound = "default";

/// Returns the status with this number; nullopt when there is none.
inline std::optional<platform::UNAuthorizationStatus> statusOf(std::int32_t number) {
  if (number < static_cast<int>(platform::UNAuthorizationStatus::notDetermined) ||
      number > static_cast<int>(platform::UNAuthorizationStatus::ephemeral)) {
    return std::nullopt;
  }
  return static_cast<platform::UNAuthorizationStatus>(number);
}

}  // namespace kivo::linux_platform::notification_center_interface
