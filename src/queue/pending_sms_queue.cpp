#include "queue/pending_sms_queue.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include "platform/foundation/errors.h"
#include "platform/foundation/iso8601_date_formatter.h"

namespace kivo {

using namespace std::chrono_literals;

namespace {

constexpr auto duplicateWindow = 60s;

std::string encodedArray(const std::vector<PendingSmsItem>& items) {
  try {
    std::vector<platform::JSONEncoder> objects;
    objects.reserve(items.size());
    for (const PendingSmsItem& item : items) objects.push_back(item.encode());
    return platform::JSONEncoder::arrayText(objects);
  } catch (const platform::NSError&) {
    return "[]";
  }
}

platform::Moment queuingTime(const PendingSmsItem& item) {
  const auto moment = platform::ISO8601DateFormatter::date(item.queuedAt);
  return moment ? *moment : platform::Date::now();
}

}  // namespace

std::vector<PendingSmsItem> PendingSmsQueue::load(const SharedStore& store) {
  const auto text = store.readText(StoreKeys::pendingSmsQueue);
  if (!text) return {};
  try {
    std::vector<PendingSmsItem> items;
    for (const auto& object : platform::JSONDecoder::arrayOfObjects(*text)) {
      items.push_back(PendingSmsItem::decode(object));
    }
    return items;
  } catch (const platform::DecodingError&) {
    return {};
  }
}

void PendingSmsQueue::save(const std::vector<PendingSmsItem>& items, SharedStore& store) {
  store.writeText(StoreKeys::pendingSmsQueue, encodedArray(items));
  store.writeText(StoreKeys::pendingSmsQueueCount, std::to_string(items.size()));
  store.synchronize();
}

void PendingSmsQueue::enqueue(PendingSmsItem item, SharedStore& store) {
  std::vector<PendingSmsItem> items = load(store);
  const platform::Moment reference = queuingTime(item);
  const auto isDuplicate = [&](const PendingSmsItem& queued) {
    return queued.smsText == item.smsText &&
           std::chrono::abs(queuingTime(queued) - reference) < duplicateWindow;
  };
  if (std::any_of(items.begin(), items.end(), isDuplicate)) return;

  items.push_back(std::move(item));
  if (items.size() > capacity) {
    items.erase(items.begin(), items.end() - static_cast<std::ptrdiff_t>(capacity));
  }
  save(items, store);
}

}  // namespace kivo
