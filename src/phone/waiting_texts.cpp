#include "phone/waiting_texts.h"

#include <chrono>

#include "phone/queue_listing.h"
#include "platform/foundation/iso8601_date_formatter.h"

namespace kivo {
namespace {

using linux_platform::LastExchange;
using platform::Moment;

constexpr int statusOK = 200;

// A run queues its text right after its exchange. So the exchange at `last` failed for the newest
// text if that was queued at the same time or later; with status 200, its body could not be
// decoded.
bool wasUnreadable(const LastExchange& last, const PendingSmsItem& newest) {
  const auto queued = platform::ISO8601DateFormatter::date(newest.queuedAt);
  return last.statusCode == statusOK && newest.retryCount == 0 && queued && *queued >= last.endedAt;
}

std::string agoText(Moment now, Moment then) {
  const std::string age =
      QueueListing::ageText(std::chrono::duration_cast<std::chrono::seconds>(now - then));
  return age == "just now" ? age : age + " ago";
}

}  // namespace

std::optional<std::string> WaitingTexts::failureOf(const LastExchange& last) {
  if (!last.statusCode) return last.failure;
  if (*last.statusCode == statusOK) return std::nullopt;
  return "the backend answered with HTTP status " + std::to_string(*last.statusCode);
}

std::string WaitingTexts::sentence(const std::vector<PendingSmsItem>& items,
                                   const std::optional<LastExchange>& last, Moment now) {
  if (items.empty()) return "none";
  std::string count = std::to_string(items.size()) + (items.size() == 1 ? " text" : " texts");
  if (!last) return count;
  auto failure = failureOf(*last);
  if (!failure && wasUnreadable(*last, items.back())) {
    failure = "the backend answered with HTTP status 200, but its response cannot be read";
  }
  if (!failure) return count;
  return count + "; the last attempt failed " + agoText(now, last->endedAt) + ": " + *failure;
}

}  // namespace kivo
