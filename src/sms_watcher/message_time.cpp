#include "sms_watcher/message_time.h"

#include "platform/foundation/iso8601_date_formatter.h"

namespace kivo {

std::optional<platform::Moment> momentSent(std::string timestamp) {
  constexpr std::size_t withoutOffset = 19;  // YYYY-MM-DDThh:mm:ss
  if (timestamp.size() == withoutOffset) timestamp += 'Z';
  if (timestamp.size() == withoutOffset + 3) timestamp += ":00";
  if (timestamp.size() == withoutOffset + 5) timestamp.insert(withoutOffset + 3, ":");
  return platform::ISO8601DateFormatter::date(timestamp);
}

}  // namespace kivo
