// Checks that the file of a store is intact and that its values are consistent.
#pragma once

#include <filesystem>
#include <string>

#include "testkit/raw_store.h"

namespace kivo::testkit {

/// Empty when the file is intact, the stored count equals the length of the queue, and the four
/// totals are all present or all absent; else a description of the problem.
inline std::string storeDisagreement(const std::filesystem::path& file) {
  RawStore store(file);
  std::string disagreement;
  const std::string integrity = store.run("PRAGMA integrity_check");
  if (integrity != "ok\n") disagreement += "integrity: " + integrity;
  const std::string queue = "(SELECT value FROM defaults WHERE key = 'pendingSmsQueue')";
  const std::string count = "(SELECT value FROM defaults WHERE key = 'pendingSmsQueueCount')";
  if (store.run("SELECT CAST(coalesce(json_array_length(" + queue + "), '') AS TEXT) = coalesce(" +
                count + ", '')") != "1\n") {
    disagreement += "queue and count differ\n";
  }
  const std::string totals = store.run(
      "SELECT count(*) FROM defaults WHERE key IN ('todayDateKey', 'todayTotal', 'todayCount', "
      "'monthlyTotal')");
  if (totals != "0\n" && totals != "4\n") disagreement += "some totals are missing\n";
  return disagreement;
}

}  // namespace kivo::testkit
