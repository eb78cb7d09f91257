// The book: stores the transactions of messages in a database. Knows no HTTP.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ledger/book_file.h"
#include "ledger/ledger_entry.h"
#include "ledger/recognition/rate.h"
#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::ledger {

/// A message of an extraction request.
struct Message {
  std::string text;
  std::string userId;
  /// yyyy-MM-dd.
  std::string expenseDate;
  /// The same in each attempt to send this message.
  std::string idempotencyKey;
};

/// Selects entries. An empty text selects all.
struct EntryFilter {
  LedgerEntry::State state = LedgerEntry::State::booked;
  /// The first and the last day, yyyy-MM-dd.
  std::string from = {};
  std::string to = {};
  /// The whole name, in any case and accents.
  std::string category = {};
  /// A part of description, category, account or reference. ASCII letters match in either case.
  std::string search = {};
  /// The newest so many; a negative number for all.
  std::int64_t most = -1;
};

/// How sums are grouped. Names that differ only in the case of ASCII letters are one group.
enum class Grouping { month, day, category, description };

/// The sum of the booked transactions of one group, one kind and one currency.
struct GroupSum {
  /// The month (yyyy-MM), the day (yyyy-MM-dd) or the name.
  std::string group;
  Kind kind = Kind::expense;
  Money sum;
  std::int64_t transactions = 0;
};

/// The booked entries of a period that its sums count.
struct Counted {
  /// The largest amount that is counted.
  std::int64_t largest = largestSum;
  /// The ids of the entries that are not, ascending: their amounts are not above zero, or above
  /// `largest`.
  std::vector<std::int64_t> leftOut = {};
};

/// The user's changes to an entry. Absent members do not change.
struct EntryChange {
  std::optional<std::string> date = {};
  std::optional<Kind> kind = {};
  std::optional<Money> amount = {};
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
};

/// The result of recording a message.
struct Recorded {
  /// The response record as JSON.
  std::string answer;
  /// The new entry; absent when the key was known, and when the message is no transaction.
  std::optional<LedgerEntry> entry;
};

/// The sum that an entry was booked with.
struct BookedSum {
  Money amount;
  /// The rate by which it was converted; empty when it is the entry's own.
  std::string rate = {};
};

/// Reads a message, as `read` does.
using MessageReader = std::function<Reading(std::string_view text, std::string_view bookCurrency)>;

/// An open book. An entry whose values cannot be is set aside: it is in no list and no sum but that
/// of the state `setAside`. Not thread-safe; other processes may have the same book open. A change
/// is durable when the call returns. Every call throws BookFailure when the file cannot be read or
/// written, and has then changed nothing.
class Book {
 public:
  /// Opens the book, and creates the file when it is missing. On failure, prints one line on
  /// standard error, unless it is the same as last time, and returns nullopt. Tests pass another
  /// `reader`.
  static std::optional<Book> open(MessageReader reader = read);

  /// Returns the answer to `message`. A key that this user has sent before gets the same bytes as
  /// then, whatever the text. For a new key, reads the message and stores the key, the answer and
  /// the transaction. `currency` is the currency of the book: a transaction in another one is
  /// converted when a rate is set, and is in review otherwise.
  Recorded record(const Message& message, const std::string& currency);

  /// Returns the entries that match `filter`, newest first.
  [[nodiscard]] std::vector<LedgerEntry> entries(const EntryFilter& filter) const;
  /// Returns the entry `id`; nullopt when no entry has this id.
  [[nodiscard]] std::optional<LedgerEntry> entry(std::int64_t id) const;
  /// Returns the booked entries from the day `from` to the day `to`, inclusive, that sums count.
  /// `largest` is `largestSum`, or less where the sum of all would exceed 64 bits.
  [[nodiscard]] Counted counted(const std::string& from, const std::string& to) const;
  /// Returns the sums of the booked entries from the day `from` to the day `to`, inclusive, in no
  /// particular order. Counts amounts above zero up to `largest`, that of a period that includes
  /// these days.
  [[nodiscard]] std::vector<GroupSum> sums(Grouping grouping, const std::string& from,
                                           const std::string& to, std::int64_t largest) const;
  /// Returns the number of entries in review.
  [[nodiscard]] std::int64_t reviewCount() const;
  /// Returns whether the file is whole. Reads all of it at the first call and while the note of
  /// `noteDamage` exists. Sets entries aside whose values cannot be. Removes the note when the file
  /// is whole; otherwise prints one line on standard error and leaves the note.
  bool isWhole();
  /// Prints one line on standard error about `failure`: for damage the file, the place and what to
  /// do, and leaves the note of `noteDamage`.
  void tell(const BookFailure& failure) const;

  /// Begins a read transaction: until the result is destroyed, all reads see the book at one
  /// moment, and nothing can be changed.
  [[nodiscard]] linux_platform::Transaction snapshot() const;

  /// Changes the entry `id`; returns false when no entry has this id. A new description or category
  /// that is not empty also applies to later messages of the same payee. A category gets the
  /// spelling that the book has for it. An entry that was set aside goes to review when all its
  /// values can be. Look-alikes are looked for again.
  bool edit(std::int64_t id, const EntryChange& change);
  /// Books the entry `id`. The amount of an entry in review that is not in `currency` is converted
  /// when a rate is set, and stays as it is otherwise. Returns nullopt, and changes nothing, when
  /// no entry has this id, or it has no amount that is bookable, also by the rate.
  std::optional<BookedSum> accept(std::int64_t id, const std::string& currency);
  /// Returns the entry `id` as its message is read now for a book kept in `currency`, with rates
  /// and corrections, marked where it looks like an earlier one. Changes nothing. nullopt when no
  /// entry has this id, its text was forgotten, or it is read as no transaction.
  [[nodiscard]] std::optional<LedgerEntry> reread(std::int64_t id,
                                                  const std::string& currency) const;
  /// Books an entry as `entry`, which `reread` returned, in one step, also one that is booked;
  /// false when that has no sum, or it was edited, set aside or deleted.
  bool acceptAs(const LedgerEntry& entry);
  /// Deletes the entry `id` and erases its text from the file; returns false when no entry has this
  /// id. The answer to its key stays. Entries that were marked as its duplicates become duplicates
  /// of the first of them.
  bool remove(std::int64_t id);
  /// Erases the texts of all messages from the file. Returns their number.
  std::int64_t forgetTexts();

  /// Sets the value of one unit of `currency` in the book's currency, for messages recorded and
  /// entries accepted later.
  void setRate(const std::string& currency, const Rate& rate);
  /// Returns the rate of `currency`; nullopt when it has none, or none that `Rate` reads.
  [[nodiscard]] std::optional<Rate> rate(const std::string& currency) const;
  /// Removes the rate of `currency`; returns false when it has no rate.
  bool removeRate(const std::string& currency);
  /// Returns the currencies and their rates as they are stored, also those that `Rate` does not
  /// read, in the order of the codes.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> rates() const;

 private:
  Book(linux_platform::Database database, MessageReader reader);

  [[nodiscard]] std::optional<std::string> answerTo(const Message& message) const;
  [[nodiscard]] Reading readingOf(const std::string& text, const std::string& currency) const;
  void correct(LedgerEntry& entry) const;
  void markLookAlike(LedgerEntry& entry, const std::string& userId) const;
  void insert(LedgerEntry& entry, const std::string& userId) const;
  void markLikenessAgain(std::int64_t id) const;
  void holdCorrection(const LedgerEntry& entry, const EntryChange& change) const;

  linux_platform::Database database_;
  MessageReader reader_;
  bool wasChecked_ = false;
};

}  // namespace kivo::ledger
