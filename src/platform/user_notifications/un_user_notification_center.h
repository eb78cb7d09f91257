// The way to the device's notification center. Never asks the person for permission.
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

/// Usable from any thread. Its tasks suspend until the center has answered or, since nobody should
/// wait for a notification, until it has been given up: 1 s at most in all for one run.
class UNUserNotificationCenter {
 public:
  static UNUserNotificationCenter& currentNotificationCenter() {
    return ProcessWide<UNUserNotificationCenter>::object();
  }

  virtual ~UNUserNotificationCenter() = default;

  /// The current permission of this program's bundle; not determined when no center answers.
  virtual Task<UNNotificationSettings> notificationSettings() = 0;

  /// Hands `request` to the center, which owns it from then on and shows it even when this process
  /// has ended. Yields an error when the center refuses it or does not answer; never throws.
  virtual Task<std::optional<NSError>> addNotificationRequest(UNNotificationRequest request) = 0;
};

}  // namespace kivo::platform
