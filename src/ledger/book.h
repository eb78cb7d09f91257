// The book: transactions read from messages, on the disk. Reads no message itself and knows no
// HTTP.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ledger/ledger_entry.h"
#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::ledger {

/// A message as the extension sends it.
struct Message {
  std::string text;
  std::string userId;
  /// yyyy-MM-dd.
  std::string expenseDate;
  /// The same for each attempt to send this message.
  std::string idempotencyKey;
};

/// Which entries to list. An empty text asks for nothing.
struct EntryFilter {
  LedgerEntry::State state = LedgerEntry::State::booked;
  /// Days, yyyy-MM-dd, inclusive.
  std::string from = {};
  std::string to = {};
  /// The whole name, ASCII letters in either case.
  std::string category = {};
  /// A part of description, category, account or reference, ASCII letters in either case.
  std::string search = {};
  /// The newest so many; a negative number for all.
  std::int64_t most = -1;
};

/// By what sums are grouped. Names that differ in the case of ASCII letters alone are one group.
enum class Grouping { month, day, category, description };

/// What was booked in one group, of one kind and in one currency.
struct GroupSum {
  /// The month (yyyy-MM), the day (yyyy-MM-dd) or the name.
  std::string group;
  Kind kind = Kind::expense;
  Money sum;
  std::int64_t transactions = 0;
};

/// A person's changes to an entry. Absent members stay as they are.
struct EntryChange {
  std::optional<std::string> date = {};
  std::optional<Kind> kind = {};
  std::optional<Money> amount = {};
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
};

/// The result of recording a message.
struct Recorded {
  /// A response record in JSON.
  std::string answer;
  /// The entry that was added for it; absent when its key was known, and when no money moved.
  std::optional<LedgerEntry> entry;
};

/// How a message is read: `read`, but for tests.
using MessageReader = std::function<Reading(std::string_view text, std::string_view bookCurrency)>;

/// An open book. For one thread; other processes may have it open as well. A change is durable when
/// its call returns. Every call throws BookFailure when the file cannot be read or written, and
/// then has changed nothing.
class Book {
 public:
  /// Opens the book; creates the file when it is missing. On failure, prints one line on standard
  /// error and returns nullopt.
  static std::optional<Book> open(MessageReader reader = read);

  /// Answers `message`. A key of that user that was answered before gets the same bytes, whatever
  /// the text. For a new one the message is read, and key, answer and transaction are durable
  /// before this returns. The book is kept in `currency`; a sum in another one is for review,
  /// unless a rate is set.
  Recorded record(const Message& message, const std::string& currency);

  /// The entries that fit `filter`, newest first.
  [[nodiscard]] std::vector<LedgerEntry> entries(const EntryFilter& filter) const;
  /// Returns the entry `id`; nullopt when no entry has this id.
  [[nodiscard]] std::optional<LedgerEntry> entry(std::int64_t id) const;
  /// The sums of what is booked from the day `from` to the day `to`, inclusive, in no order. Sums
  /// that do not fit 64 bits are a BookFailure.
  [[nodiscard]] std::vector<GroupSum> sums(Grouping grouping, const std::string& from,
                                           const std::string& to) const;
  /// The number of entries in review.
  [[nodiscard]] std::int64_t reviewCount() const;
  /// While the result lives, all that is read is the book of one moment. Nothing may be changed
  /// meanwhile.
  [[nodiscard]] linux_platform::Transaction snapshot() const;

  /// Changes the entry `id`; false when no entry has this id. A new description or category also
  /// applies to later messages of the same payee.
  bool edit(std::int64_t id, const EntryChange& change);
  /// Books the entry `id`; false when no entry has this id, or it has no sum.
  bool accept(std::int64_t id);
  /// Removes the entry `id` and its text; false when no entry has this id. Its key keeps its
  /// answer. Entries that were marked as its look-alikes are marked as look-alikes of the first of
  /// them.
  bool remove(std::int64_t id);
  /// Removes the texts of all messages from the file; returns how many there were.
  std::int64_t forgetTexts();

  /// Sets the worth of one unit of `currency` in the book's currency, a plain decimal above zero:
  /// for later messages.
  void setRate(const std::string& currency, const std::string& rate);
  /// False when there was no rate.
  bool removeRate(const std::string& currency);
  /// Currencies and their rates.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> rates() const;

 private:
  Book(linux_platform::Database database, MessageReader reader);

  [[nodiscard]] std::optional<std::string> answerTo(const Message& message) const;
  [[nodiscard]] Reading readingOf(const std::string& text, const std::string& currency) const;
  [[nodiscard]] std::optional<Money> converted(const Money& foreign,
                                               const std::string& currency) const;
  void correct(LedgerEntry& entry) const;
  void markLookAlike(LedgerEntry& entry, const std::string& userId) const;
  void insert(LedgerEntry& entry, const std::string& userId) const;
  void forgetLikeness(std::int64_t id) const;
  void holdCorrection(const LedgerEntry& entry, const EntryChange& change) const;

  linux_platform::Database database_;
  MessageReader reader_;
};

}  // namespace kivo::ledger
