// How much of the notification center's limits a request uses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

/// The largest size of a request, in bytes.
inline constexpr std::size_t largestRequest = 2 << 20;

/// The size of `text` in bytes, with the memory that a string costs besides and the bytes that
/// escaping it in JSON adds on the disk.
std::size_t sizeOf(std::string_view text);

/// The size of all texts of a request, with its bundle.
std::size_t sizeOf(const std::string& bundle, const platform::UNNotificationRequest& request);

}  // namespace kivo
