#include "platform/linux/user_notifications/center_calls.h"

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/notification_center_interface.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

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

}  // namespace

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

bool isStored(const BusMessage& reply) { return reply && !errorOf(reply); }

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

}  // namespace kivo::linux_platform
