// Computes how much of the notification center's limits a request uses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

/// The largest size of a request, in bytes.
inline constexpr std::size_t largestRequest = 2 << 20;

/// Returns the size of `text` in bytes, plus the overhead of a string in memory and of JSON escapes
/// on disk.
std::size_t sizeOf(std::string_view text);

/// Returns the size of all texts of a request and its bundle.
std::size_t sizeOf(const std::string& bundle, const platform::UNNotificationRequest& request);

}  // namespace kivo
