// The client of the notification center on the session bus: posts notifications, and reads and sets
// the permission.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/user_notifications/un_user_notification_center.h"

namespace kivo::linux_platform {

class SessionBus;

/// Its tasks run on a TaskExecutor. Cancelling one does not cancel its call: the notification is
/// still posted.
class BusUserNotificationCenter : public platform::UNUserNotificationCenter {
 public:
  /// Acts for `bundleIdentifier`. `bus` must outlive this object and defines the timeouts.
  BusUserNotificationCenter(SessionBus& bus, std::string bundleIdentifier);

  platform::Task<platform::UNNotificationSettings> notificationSettings() override;
  platform::Task<std::optional<platform::NSError>> addNotificationRequest(
      platform::UNNotificationRequest request) override;

 private:
  SessionBus& bus_;
  std::string bundleIdentifier_;
};

/// Returns the user's decision for `bundle`; nullopt when the center does not reply within 5 s.
/// Blocks until the reply.
std::optional<platform::UNAuthorizationStatus> authorizationStatus(std::string_view bundle);

/// Stores the user's decision for `bundle` in the center, durably. Blocks until the reply. Returns
/// false when the center refuses or does not reply within 5 s.
bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status);

}  // namespace kivo::linux_platform
