// Property: any stored text is either a list of notifications that the notification center could
// have written, with intervals from 0 to below 100 years, or throws DecodingError; and what it
// writes, also when made of the input, reads back unchanged.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "notification_center/pending_notification.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/utf8.h"
#include "property.h"

namespace {

using namespace kivo;

bool isPossible(const PendingNotification& notification) {
  constexpr double century = 100 * 365.2425 * 24 * 60 * 60;
  const double seconds = notification.request.trigger.timeInterval.count();
  return seconds >= 0 && seconds < century;
}

void requireReadsBack(const std::vector<PendingNotification>& notifications) {
  fuzz::require(pendingNotifications(textOf(notifications)) == notifications,
                "notifications are the same after they were written");
}

void requirePossibleOrRefused(std::string_view text) {
  std::vector<PendingNotification> notifications;
  try {
    notifications = pendingNotifications(text);
  } catch (const platform::DecodingError&) {
    return;
  }
  for (const auto& notification : notifications) {
    fuzz::require(isPossible(notification), "no notification waits for an impossible time");
  }
  requireReadsBack(notifications);
}

std::vector<PendingNotification> made(FuzzedDataProvider input) {
  const auto text = [&] { return platform::repairedUtf8(input.ConsumeRandomLengthString(60)); };
  std::vector<PendingNotification> notifications;
  const int count = input.ConsumeIntegralInRange(0, 2);
  for (int i = 0; i < count; ++i) {
    PendingNotification& notification = notifications.emplace_back();
    notification.bundle = text();
    notification.request.identifier = text();
    notification.request.content.title = text();
    notification.request.content.body = text();
    const int entries = input.ConsumeIntegralInRange(0, 2);
    for (int entry = 0; entry < entries; ++entry) {
      const std::string key = text();
      notification.request.content.userInfo[key] = text();
    }
    const double seconds = input.ConsumeFloatingPointInRange(0.0, 3e9);
    notification.request.trigger.timeInterval = std::chrono::duration<double>(seconds);
    notification.due =
        platform::Moment(platform::Moment::duration(input.ConsumeIntegral<std::int64_t>()));
  }
  return notifications;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  requirePossibleOrRefused({reinterpret_cast<const char*>(data), size});
  requireReadsBack(made(FuzzedDataProvider(data, size)));
  return 0;
}
