// A queue in the store of a test phone.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "queue/pending_sms_queue.h"
#include "testkit/queued_items.h"
#include "testkit/test_phone.h"

namespace kivo {

class AQueue : public ::testing::Test {
 protected:
  void storeText(std::string_view text) { phone_.put(StoreKeys::pendingSmsQueue, text); }
  std::optional<std::string> storedText() { return phone_.text(StoreKeys::pendingSmsQueue); }
  std::optional<std::string> storedCount() { return phone_.text(StoreKeys::pendingSmsQueueCount); }
  static std::vector<PendingSmsItem> load() {
    return PendingSmsQueue::load(testkit::TestPhone::openStore());
  }
  void save(const std::vector<PendingSmsItem>& items) { PendingSmsQueue::save(items, store_); }
  void enqueue(PendingSmsItem item) { PendingSmsQueue::enqueue(std::move(item), store_); }
  static PendingSmsItem queuedAt(const std::string& id, std::string moment) {
    PendingSmsItem item = testkit::queuedItem(id);
    item.smsText = "the same text";
    item.queuedAt = std::move(moment);
    return item;
  }
  static std::vector<PendingSmsItem> items(int count) {
    std::vector<PendingSmsItem> items;
    for (int index = 0; index < count; ++index)
      items.push_back(testkit::queuedItem(std::to_string(index)));
    return items;
  }

  testkit::TestPhone phone_;
  SharedStore store_ = phone_.openStore();
};

}  // namespace kivo
