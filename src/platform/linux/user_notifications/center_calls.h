// The calls of the phone's notification center, as messages. Sends none; included by the .cpp files
// that speak on the bus, nowhere else.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/errors.h"
#include "platform/linux/bus/bus_message.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

// Texts may be any bytes: those that D-Bus cannot carry are replaced by U+FFFD. Each call has a
// function that reads its reply, which is null when there was none.

BusMessage authorizationStatusCall(const std::string& bundle);
/// None when the center did not answer with a status.
std::optional<platform::UNAuthorizationStatus> statusIn(const BusMessage& reply);

BusMessage setAuthorizationStatusCall(const std::string& bundle,
                                      platform::UNAuthorizationStatus status);
/// Whether the center has stored the status.
bool isStored(const BusMessage& reply);

BusMessage addCall(const std::string& bundle, const platform::UNNotificationRequest& request);
/// None when the center has the request on its disk, else the error.
std::optional<platform::NSError> addFailure(const BusMessage& reply);

}  // namespace kivo::linux_platform
