// Reads the arguments of `Add` one by one, so that a request that is too large is refused before it
// is copied any further.
#pragma once

#include <cstddef>
#include <string>

#include "platform/user_notifications/un_notification_request.h"

namespace sdbus {
class Error;
class MethodCall;
}  // namespace sdbus

namespace kivo::linux_platform {

/// A request as it comes over the bus, with the bundle that it is from.
struct ReceivedRequest {
  std::string bundle;
  platform::UNNotificationRequest request;
};

/// What `text` counts: its bytes, what the memory for it costs besides, and what escaping it in
/// JSON costs on the disk.
std::size_t sizeOf(const std::string& text);

/// What all texts of a request count, with its bundle.
std::size_t sizeOf(const std::string& bundle, const platform::UNNotificationRequest& request);

/// The largest size of a request.
inline constexpr std::size_t largestRequest = 2 << 20;

/// The answers to a call with a value that it must not have, as `words` say, and to one that is
/// larger than `largestRequest`.
sdbus::Error invalid(const std::string& words);
sdbus::Error tooLarge();

/// Reads `call`, whose arguments have the signature `ssa{sv}db`. Throws sdbus::Error, as the caller
/// is to be answered, when the request is larger than `largestRequest` or has a value that it must
/// not have.
ReceivedRequest readRequest(sdbus::MethodCall& call);

}  // namespace kivo::linux_platform
