// Items of the offline queue for tests.
#pragma once

#include <string>
#include <vector>

#include "queue/pending_sms_item.h"

namespace kivo::testkit {

/// An item of an earlier day, with its own text.
inline PendingSmsItem queuedItem(const std::string& id, std::int64_t retryCount = 0) {
  return {.id = id,
          .smsText = "text " + id,
          .expenseDate = "2026-01-30",
          .queuedAt = "2026-01-30T10:00:00Z",
          .retryCount = retryCount,
          .source = "sms"};
}

/// "id:retryCount" of each item, in order.
inline std::vector<std::string> idsAndCounts(const std::vector<PendingSmsItem>& items) {
  std::vector<std::string> lines;
  for (const auto& item : items) lines.push_back(item.id + ":" + std::to_string(item.retryCount));
  return lines;
}

}  // namespace kivo::testkit
