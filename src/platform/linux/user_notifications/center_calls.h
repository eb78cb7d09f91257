// Builds the D-Bus calls of the notification center and reads their replies. Included only by .cpp
// files that use D-Bus.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/errors.h"
#include "platform/linux/bus/bus_message.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

// Texts may be any bytes: U+FFFD replaces those that D-Bus cannot carry. Each call has a function
// that reads its reply; a null reply means that none came.

BusMessage authorizationStatusCall(const std::string& bundle);
/// Returns the status; nullopt when the reply contains none.
std::optional<platform::UNAuthorizationStatus> statusIn(const BusMessage& reply);

BusMessage setAuthorizationStatusCall(const std::string& bundle,
                                      platform::UNAuthorizationStatus status);
/// Whether the center has stored the status.
bool isStored(const BusMessage& reply);

BusMessage addCall(const std::string& bundle, const platform::UNNotificationRequest& request);
/// Returns nullopt when the center has written the request to disk, otherwise the error.
std::optional<platform::NSError> addFailure(const BusMessage& reply);

}  // namespace kivo::linux_platform
