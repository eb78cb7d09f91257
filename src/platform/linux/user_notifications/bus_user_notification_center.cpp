#include "platform/linux/user_notifications/bus_user_notification_center.h"

#include <utility>

#include "platform/linux/bus/session_bus.h"
#include "platform/linux/user_notifications/center_calls.h"

namespace kivo::linux_platform {

using platform::UNAuthorizationStatus;

BusUserNotificationCenter::BusUserNotificationCenter(SessionBus& bus, std::string bundleIdentifier)
    : bus_(bus), bundleIdentifier_(std::move(bundleIdentifier)) {}

platform::Task<platform::UNNotificationSettings> BusUserNotificationCenter::notificationSettings() {
  BusMessage call = authorizationStatusCall(bundleIdentifier_);
  const BusMessage reply = co_await bus_.call(std::move(call));
  const auto status = statusIn(reply).value_or(UNAuthorizationStatus::notDetermined);
  co_return platform::UNNotificationSettings{.authorizationStatus = status};
}

platform::Task<std::optional<platform::NSError>> BusUserNotificationCenter::addNotificationRequest(
    platform::UNNotificationRequest request) {
  BusMessage call = addCall(bundleIdentifier_, request);
  const BusMessage reply = co_await bus_.call(std::move(call));
  co_return addFailure(reply);
}

}  // namespace kivo::linux_platform
