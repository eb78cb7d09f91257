#include "platform/linux/user_notifications/bus_user_notification_center.h"

#include <chrono>
#include <utility>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/notification_center_interface.h"
#include "platform/linux/bus/session_bus.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

// The timeout of a program without runs. The bus may have to start the center first.
constexpr std::chrono::seconds timeout(5);

constexpr const BusObject& center = notification_center_interface::object;

void appendContent(BusWriter& content, const platform::UNMutableNotificationContent& shown) {
  content.textEntry(notification_center_interface::title, shown.title);
  content.textEntry(notification_center_interface::body, shown.body);
  content.textEntry(notification_center_interface::sound,
                    notification_center_interface::defaultSound);
  content.variantEntry(notification_center_interface::userInfo, "a{ss}",
                       [&shown](BusWriter& userInfo) {
                         userInfo.array("{ss}", [&shown](BusWriter& entries) {
                           for (const auto& [key, value] : shown.userInfo)
                             entries.entry(key, value);
                         });
                       });
}

void appendRequest(BusWriter& arguments, const std::string& bundle,
                   const platform::UNNotificationRequest& request) {
  using Repeats = platform::UNTimeIntervalNotificationTrigger::Repeats;
  arguments.text(bundle);
  arguments.text(request.identifier);
  arguments.array("{sv}",
                  [&request](BusWriter& content) { appendContent(content, request.content); });
  arguments.number(request.trigger.timeInterval.count());
  arguments.flag(request.trigger.repeats == Repeats::yes);
}

// Each call has a function that reads its reply; a null reply means that none came. Texts may be
// any bytes.

BusMessage authorizationStatusCall(const std::string& bundle) {
  return methodCall(center, notification_center_interface::authorizationStatus,
                    [&](BusWriter& arguments) { arguments.text(bundle); });
}

std::optional<UNAuthorizationStatus> statusIn(const BusMessage& reply) {
  if (!reply || errorOf(reply)) return std::nullopt;
  const auto number = BusReader(reply).integer();
  return number ? notification_center_interface::statusOf(*number) : std::nullopt;
}

BusMessage setAuthorizationStatusCall(const std::string& bundle, UNAuthorizationStatus status) {
  return methodCall(center, notification_center_interface::setAuthorizationStatus,
                    [&](BusWriter& arguments) {
                      arguments.text(bundle);
                      arguments.integer(static_cast<int>(status));
                    });
}

BusMessage addCall(const std::string& bundle, const platform::UNNotificationRequest& request) {
  return methodCall(center, notification_center_interface::add,
                    [&](BusWriter& arguments) { appendRequest(arguments, bundle, request); });
}

std::optional<NSError> addFailure(const BusMessage& reply) {
  if (!reply) return NSError("UNErrorDomain", 1, "The notification center does not answer");
  // Any program could have written the error's message; its name is a fixed identifier.
  const auto error = errorOf(reply);
  if (!error) return std::nullopt;
  return NSError("UNErrorDomain", 2, "The notification center refused: " + *error);
}

}  // namespace

BusUserNotificationCenter::BusUserNotificationCenter(SessionBus& bus, std::string bundleIdentifier)
    : bus_(bus), bundleIdentifier_(std::move(bundleIdentifier)) {}

platform::Task<platform::UNNotificationSettings> BusUserNotificationCenter::notificationSettings() {
  BusMessage call = authorizationStatusCall(bundleIdentifier_);
  const BusMessage reply = co_await bus_.call(std::move(call));
  const auto status = statusIn(reply).value_or(UNAuthorizationStatus::notDetermined);
  co_return platform::UNNotificationSettings{.authorizationStatus = status};
}

platform::Task<std::optional<NSError>> BusUserNotificationCenter::addNotificationRequest(
    platform::UNNotificationRequest request) {
  BusMessage call = addCall(bundleIdentifier_, request);
  const BusMessage reply = co_await bus_.call(std::move(call));
  co_return addFailure(reply);
}

std::optional<UNAuthorizationStatus> authorizationStatus(std::string_view bundle) {
  return statusIn(SessionBus(timeout).callAndWait(authorizationStatusCall(std::string(bundle))));
}

bool setAuthorizationStatus(std::string_view bundle, UNAuthorizationStatus status) {
  const BusMessage reply =
      SessionBus(timeout).callAndWait(setAuthorizationStatusCall(std::string(bundle), status));
  return reply && !errorOf(reply);
}

}  // namespace kivo::linux_platform
