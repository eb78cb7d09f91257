// Lists the messages that the book was made of.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "money/day.h"

namespace kivo::book {

class Database;

/// A message that was recorded.
struct RecordedMessage {
  /// The day of its transaction, which the user may have changed, or of the ignored message; absent
  /// when that was deleted, and when a damaged file has no day.
  std::optional<money::Day> date = {};
  /// Absent when it was erased.
  std::optional<std::string> text = {};
  /// The answer to its key; empty for an ignored message.
  std::string answer = {};
};

/// Returns the messages of `userId` whose keys do not begin with `exceptKeys`, without those that
/// were not booked and left no text. Throws BookFailure.
std::vector<RecordedMessage> recordedMessages(Database& database, const std::string& userId,
                                              const std::string& exceptKeys);

}  // namespace kivo::book
