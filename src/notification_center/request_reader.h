// Reads the arguments of `Add` one by one, so that a request that is too large is refused before it
// is copied any further.
#pragma once

#include <string>

#include "platform/linux/bus/served_object.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

/// A request as it comes over the bus, with its bundle.
struct ReceivedRequest {
  std::string bundle;
  platform::UNNotificationRequest request;
};

/// The refusal of a request that is larger than `largestRequest`.
linux_platform::BusRefusal tooLarge();

/// Reads the arguments of a call with the signature `ssa{sv}db`. Throws the
/// linux_platform::BusRefusal to answer with when the request is larger than `largestRequest` or
/// has a value that is not allowed.
ReceivedRequest readRequest(linux_platform::BusReader arguments);

}  // namespace kivo
