// The client of the device's notification center. Never asks the user for permission.
#pragma once

#include <optional>

#include "platform/concurrency/task.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/process_wide.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo::platform {

struct UNNotificationSettings {
  UNAuthorizationStatus authorizationStatus = UNAuthorizationStatus::notDetermined;
};

/// Thread-safe. Its tasks suspend until the center replies or a timeout of 1 s. After one timeout
/// the later calls of the same run fail at once.
class UNUserNotificationCenter {
 public:
  static UNUserNotificationCenter& currentNotificationCenter() {
    return ProcessWide<UNUserNotificationCenter>::object();
  }

  virtual ~UNUserNotificationCenter() = default;

  /// Returns the permission of this program's bundle; `notDetermined` when no center replies.
  virtual Task<UNNotificationSettings> notificationSettings() = 0;

  /// Adds `request` to the center, which shows it even when this process has ended by then. Returns
  /// an error when the center refuses it or does not reply. Never throws.
  virtual Task<std::optional<NSError>> addNotificationRequest(UNNotificationRequest request) = 0;
};

}  // namespace kivo::platform
