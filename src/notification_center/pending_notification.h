// A notification that waits to be shown, and its form on disk.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

struct PendingNotification {
  std::string bundle;
  platform::UNNotificationRequest request;
  /// When to show it.
  platform::Moment due;

  bool operator==(const PendingNotification&) const = default;
};

/// Encodes `notifications`, in order, as JSON. Never fails.
std::string textOf(const std::vector<PendingNotification>& notifications);

/// Decodes a text of `textOf`. Throws DecodingError when it is not one.
std::vector<PendingNotification> pendingNotifications(std::string_view text);

}  // namespace kivo
