// Finds the messages of a file that the book knows from elsewhere: from the modem, or from an
// extension of the user's.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "book/book.h"

namespace kivo::recording {

/// The messages that came live, each of which accounts for one message of the file. Not
/// thread-safe.
class KnownMessages {
 public:
  /// Those of `userId` in `book` whose keys do not begin with `importKeys`. Throws BookFailure.
  KnownMessages(const book::Book& book, const std::string& userId, const std::string& importKeys);

  /// Returns whether a live message has this text, on any day.
  [[nodiscard]] bool hasText(std::string_view text) const;
  /// Notes that the file has a message of `day` with this text, for which `accountsFor` will be
  /// called. A live message of that day is for it rather than for one of the day before or after.
  void expect(std::string_view text, const money::Day& day);
  /// Returns whether a live message with this text, at most a day earlier or later, accounts for
  /// one of `day`. It accounts for no other one then.
  bool accountsFor(std::string_view text, const money::Day& day);

  /// Returns whether a live message of `day` whose text was erased may account for another one.
  [[nodiscard]] bool hasErasedOf(const money::Day& day) const;
  /// Returns whether a live message whose text was erased was answered with the day, sum and
  /// description of `entry`. It accounts for no other one then.
  bool accountsForErased(const book::LedgerEntry& entry);

 private:
  struct OfDay {
    std::int64_t live = 0;
    std::int64_t expected = 0;
  };
  struct Erased {
    double amount = 0;
    std::string description;
  };
  void add(const book::RecordedMessage& message);

  std::unordered_map<std::string, std::map<money::Day, OfDay>> byText_;
  std::map<money::Day, std::vector<Erased>> erased_;
};

}  // namespace kivo::recording
