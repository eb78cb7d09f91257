// The notification center as a program's tasks see it, reached over the session bus. Shows nothing
// itself.
#pragma once

#include <string>

#include "platform/user_notifications/un_user_notification_center.h"

namespace kivo::linux_platform {

class SessionBus;

/// Its tasks run on a TaskExecutor. Cancelling one ends no call: a notification is still posted.
class BusUserNotificationCenter : public platform::UNUserNotificationCenter {
 public:
  /// Asks and adds in the name of `bundleIdentifier`. `bus` outlives this object, and has the
  /// timeouts.
  BusUserNotificationCenter(SessionBus& bus, std::string bundleIdentifier);

  platform::Task<platform::UNNotificationSettings> notificationSettings() override;
  platform::Task<std::optional<platform::NSError>> addNotificationRequest(
      platform::UNNotificationRequest request) override;

 private:
  SessionBus& bus_;
  std::string bundleIdentifier_;
};

}  // namespace kivo::linux_platform
