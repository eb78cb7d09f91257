// Reads and sets the permission to notify, as the phone's settings do.
#pragma once

#include <optional>
#include <string_view>

#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

/// Returns the user's decision for `bundle`; nullopt when the center does not reply within 5 s.
/// Blocks until the reply.
std::optional<platform::UNAuthorizationStatus> authorizationStatus(std::string_view bundle);

/// Stores the user's decision for `bundle` in the center, durably. Blocks until the reply. Returns
/// false when the center refuses or does not reply within 5 s.
bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status);

}  // namespace kivo::linux_platform
