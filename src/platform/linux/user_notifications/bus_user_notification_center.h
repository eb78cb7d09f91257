// The client of the notification center on the session bus.
#pragma once

#include <string>

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

}  // namespace kivo::linux_platform
