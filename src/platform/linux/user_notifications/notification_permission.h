// Whether a program may notify, as the phone's settings show and decide it. Shows nothing.
#pragma once

#include <optional>
#include <string_view>

#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

/// The person's decision for `bundle`. Blocks until the center has answered; none when there is
/// none that answers within 5 s.
std::optional<platform::UNAuthorizationStatus> authorizationStatus(std::string_view bundle);

/// Stores the person's decision for `bundle` at the notification center, which keeps it on disk.
/// Blocks until the center has answered; false when none does within 5 s or it refuses.
bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status);

}  // namespace kivo::linux_platform
