#include "notification_center/request_size.h"

#include <algorithm>

namespace kivo {

std::size_t sizeOf(std::string_view text) {
  constexpr std::size_t escape = 6;
  const auto escaped = std::count_if(text.begin(), text.end(), [](unsigned char character) {
    return character < ' ' || character == '"' || character == '\\';
  });
  return text.size() + sizeof(std::string) + escape * static_cast<std::size_t>(escaped);
}

std::size_t sizeOf(const std::string& bundle, const platform::UNNotificationRequest& request) {
  const platform::UNMutableNotificationContent& content = request.content;
  std::size_t size =
      sizeOf(bundle) + sizeOf(request.identifier) + sizeOf(content.title) + sizeOf(content.body);
  for (const auto& [key, value] : content.userInfo) size += sizeOf(key) + sizeOf(value);
  return size;
}

}  // namespace kivo
