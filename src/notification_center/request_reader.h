// Reads the arguments of `Add` one by one, so that a request that is too large is refused before
// all of it is copied.
#pragma once

#include <string>

#include "platform/linux/bus/served_object.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

/// A request and its bundle.
struct ReceivedRequest {
  std::string bundle;
  platform::UNNotificationRequest request;
};

/// Returns the refusal of a request that is larger than `largestRequest`.
linux_platform::BusRefusal tooLarge();

/// Reads the arguments of a call with the signature `ssa{sv}db`. Throws linux_platform::BusRefusal,
/// the error reply, when the request is larger than `largestRequest` or has an invalid value.
ReceivedRequest readRequest(linux_platform::BusReader arguments);

}  // namespace kivo
