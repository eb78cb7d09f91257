// The calls to the phone's notification center, as they go over the bus. Waits for nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/foundation/errors.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo::linux_platform {

class BusThread;

// Each function returns at once and has its answer called exactly once: on the bus's thread, or,
// when there is no bus, possibly at once on the calling thread. An answer must not throw. Texts may
// be any bytes; what the bus cannot carry is replaced by U+FFFD.

/// Answers none when there is no center, or none that answers with a status.
void callAuthorizationStatus(
    BusThread& bus, const std::string& bundle,
    std::function<void(std::optional<platform::UNAuthorizationStatus>)> answer);

/// Answers whether the center has stored the status.
void callSetAuthorizationStatus(BusThread& bus, const std::string& bundle,
                                platform::UNAuthorizationStatus status,
                                std::function<void(bool)> answer);

/// Answers none when the center has the request on its disk, and what went wrong otherwise.
void callAdd(BusThread& bus, const std::string& bundle,
             const platform::UNNotificationRequest& request,
             std::function<void(std::optional<platform::NSError>)> answer);

/// What an unanswered `callAdd` amounts to.
platform::NSError centerNotAnswering();

}  // namespace kivo::linux_platform
