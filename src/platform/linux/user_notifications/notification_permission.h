// Sets whether a program may notify, in the place of the phone's settings. Shows nothing.
#pragma once

#include <string_view>

#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

/// Stores the person's decision for `bundle` at the notification center, which keeps it on disk.
/// Blocks until the center has answered; false when none does within 5 s or it refuses.
bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status);

}  // namespace kivo::linux_platform
