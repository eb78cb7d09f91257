// Records the messages of a file, many in one step of the book, without those that the book knows.
#pragma once

#include <cstdint>
#include <future>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "book/book.h"
#include "recording/known_messages.h"
#include "recording/recording.h"

namespace kivo::recording {

/// How many messages had which result. Each message counts once.
struct ImportCounts {
  std::int64_t booked = 0;
  std::int64_t review = 0;
  /// No transaction.
  std::int64_t ignored = 0;
  /// A payment that the bank refused.
  std::int64_t declined = 0;
  /// In the book already, and not recorded again.
  std::int64_t known = 0;

  /// Their sum.
  [[nodiscard]] std::int64_t messages() const;
  ImportCounts& operator+=(const ImportCounts& other);
};

/// An import. Not thread-safe.
class Import {
 public:
  /// Whether messages are recorded, or only counted as they would be.
  enum class Mode { record, dryRun };

  struct Settings {
    /// The user for whom messages are recorded.
    std::string userId;
    /// The currency of the book.
    money::CurrencyCode currency;
    /// Called by two threads at a time.
    MessageReader read;
    /// The beginning of the keys of imported messages; others came live.
    std::string importKeys;
    /// The command of which each step is a part.
    book::UserCommand command;
    Mode mode = Mode::record;
  };

  /// `book` must outlive this object. Throws BookFailure.
  Import(book::Book& book, Settings settings);

  /// Notes that `message` will be added, so that a live message of its own day is kept for it. Call
  /// it for all messages before the first `add`.
  void expect(const Message& message);
  /// Records `message` in a later call, with up to 2,000 others in one step. Throws BookFailure,
  /// and Failure when `undo` took the import back meanwhile; what was recorded in earlier steps
  /// stays.
  void add(Message message);
  /// Records the messages that were added; throws as `add` does.
  void finish();

  /// The results of the messages that were recorded.
  [[nodiscard]] const ImportCounts& counts() const { return counts_; }

 private:
  // Each absent when its message needs none.
  using Readings = std::vector<std::optional<recognition::Reading>>;
  // Messages that are recorded in one step of the book, and their readings when those are ready.
  struct Step {
    std::vector<Message> messages = {};
    std::future<Readings> readings = {};
  };
  void recordWhileReading();
  Step beginReading();
  void record(Step step);
  void recordOne(const Message& message, const std::optional<recognition::Reading>& read,
                 ImportCounts& counts);
  [[nodiscard]] bool isKnownByKey(const Message& message) const;
  bool cameLive(const Message& message, const BookReading& reading);

  book::Book* book_;
  Settings settings_;
  KnownMessages known_;
  std::vector<Message> waiting_;
  std::optional<Step> reading_;
  // Of messages for which nothing is stored under their keys.
  std::unordered_set<std::string> keysTaken_;
  std::unordered_set<std::string> keysExpected_;
  ImportCounts counts_;
};

}  // namespace kivo::recording
