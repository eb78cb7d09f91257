// A notification that waits to be shown, and its form on disk. Decides nothing about when.
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
  /// When the request's interval is over.
  platform::Moment due;

  bool operator==(const PendingNotification&) const = default;
};

/// All of `notifications`, in their order, as one JSON text. Fails for no content.
std::string textOf(const std::vector<PendingNotification>& notifications);

/// What `textOf` made `text` from. Throws DecodingError when it is no such text.
std::vector<PendingNotification> pendingNotifications(std::string_view text);

}  // namespace kivo
