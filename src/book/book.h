// The book: what is kept of a person's payments. Reads no message and knows no HTTP.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "book/account.h"
#include "book/book_backup.h"
#include "book/book_failure.h"
#include "book/budget.h"
#include "book/ignored_message.h"
#include "book/ledger_entry.h"
#include "book/recorded_messages.h"
#include "book/rule.h"
#include "book/stored_rate.h"
#include "book/user_command.h"
#include "money/rate.h"

namespace kivo::book {

/// Selects entries. An empty text or an absent day selects all.
struct EntryFilter {
  LedgerEntry::State state = LedgerEntry::State::booked;
  /// The first and the last day.
  std::optional<money::Day> from = {};
  std::optional<money::Day> to = {};
  /// The whole name, in any case and accents.
  std::string category = {};
  std::optional<money::Kind> kind = {};
  /// The whole of the account's digits, or its name, where ASCII letters match in either case.
  std::string account = {};
  /// A part of description, category, account or reference, where ASCII letters match in either
  /// case, or the amount, as `money::nearestSums` reads it in the entry's currency.
  std::string search = {};
  /// The least and the largest amount, as `money::nearestSums` reads them in the entry's currency.
  std::string least = {};
  std::string largest = {};
  /// The newest so many; a negative number for all.
  std::int64_t most = -1;
};

/// Where an entry stands in a list: enough to show long lists of which few rows are read.
struct EntryPlace {
  std::int64_t id = 0;
  money::Day date;
};

/// The names by which sums are grouped. Those that differ only in the case of ASCII letters are one
/// group.
enum class Names { category, description };

/// What is booked under a name, in the spelling of its first entry, in one month.
struct NameInMonth {
  std::string name;
  money::Month month;
};

/// The sum of the booked transactions of one group, one kind and one currency. Refunds are among
/// the expenses, and lessen their sum, which may be below zero. Both halves of a transfer between
/// own accounts are transfers, and the one that came in adds nothing to the sum.
template <typename Group>
struct GroupSum {
  Group group;
  money::Kind kind = money::Kind::expense;
  money::Money sum;
  std::int64_t transactions = 0;
  /// Of expenses: the sum of the refunds, by which `sum` is lessened, and their number, which is
  /// part of `transactions`.
  money::Money refunded;
  std::int64_t refunds = 0;
};

/// Two entries that look like one transfer between own accounts.
struct LikelyPair {
  std::int64_t outgoing = 0;
  std::int64_t incoming = 0;

  bool operator==(const LikelyPair&) const = default;
};

/// A booked expense and whose it is.
struct PayeeExpense {
  std::int64_t id = 0;
  money::Day date;
  money::Money amount;
  /// The text of the `names::PayeeKey` of its payee, or of its description when it has none.
  std::string payee;
};

/// The booked entries of a period that its sums count.
struct Counted {
  /// The largest amount that is counted.
  std::int64_t largest = money::largestSum;
  /// The ids of the entries that are not, ascending: their amounts are not above zero, or above
  /// `largest`.
  std::vector<std::int64_t> leftOut = {};
};

/// The user's changes to an entry. Absent members do not change.
struct EntryChange {
  std::optional<money::Day> date = {};
  std::optional<money::Kind> kind = {};
  /// Whether it gives back a payment; has no effect unless it is an income. One that becomes a
  /// refund gets the category of the last payment to its payee, else "Refund", unless `category` is
  /// given.
  std::optional<bool> refund = {};
  std::optional<money::Money> amount = {};
  /// The sum from which `amount` was converted; absent when it was not.
  std::optional<money::Money> original = {};
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
};

/// The texts that `Book::forgetTexts` erased.
struct ForgottenTexts {
  /// Of entries, which stay.
  std::int64_t ofEntries = 0;
  /// Of ignored messages, which are gone.
  std::int64_t ofIgnored = 0;
};

class Database;

/// While it lives, `Book::open` uses the databases that `open` returns, in the place of files: a
/// server keeps books elsewhere. The last one made counts. Only for processes in which no other
/// thread opens books.
class BooksFrom {
 public:
  using Open = std::function<std::unique_ptr<Database>()>;
  explicit BooksFrom(Open open);
  ~BooksFrom();
  BooksFrom(const BooksFrom&) = delete;
  BooksFrom& operator=(const BooksFrom&) = delete;

 private:
  Open before_;
};

/// An open book. An entry whose values cannot be is set aside: it is in no list and no sum but that
/// of the state `setAside`. Not thread-safe; other processes may have the same book open. A change
/// is durable when the call returns. Every change also erases the ignored messages that are older
/// than `keptDays`. Every call throws BookFailure when the book cannot be read or written, and has
/// then changed nothing.
class Book {
 public:
  /// Opens the book, and creates it when it is missing. Throws BookFailure.
  static Book open();
  Book(Book&& other) noexcept;
  Book& operator=(Book&& other) noexcept;
  ~Book();

  /// Calls `steps`, which use this book alone: all that they change is durable together, or nothing
  /// is when one of them throws. They see no change of another process. Within a step, the calls
  /// that change the book become part of it, this one as well.
  void inOneStep(const std::function<void()>& steps);
  /// As `inOneStep`, as a step of `command`: all that changes is noted, so that `undo` can take it
  /// back, and the command gets its number. A command that changes nothing is not kept. Within a
  /// step of a command, the steps become part of that command. Throws Failure when a command of
  /// several steps was taken back meanwhile.
  void asCommand(UserCommand& command, const std::function<void()>& steps);
  /// Returns the commands of the last 30 days, the last one first, at most 1,000.
  [[nodiscard]] std::vector<PastCommand> history() const;
  /// Takes back the last `count` commands, or as many as there are, and returns them, the last one
  /// first. What they changed is as it was before, but texts that were erased since stay erased,
  /// also those of deleted entries.
  std::vector<PastCommand> undo(std::int64_t count);
  /// Calls `reads`, which see the book at one moment and change nothing.
  void atOneMoment(const std::function<void()>& reads) const;

  /// Returns the answer that is kept for the idempotency key `key` of the user `userId`; nullopt
  /// when there is none.
  [[nodiscard]] std::optional<std::string> answer(const std::string& userId,
                                                  const std::string& key) const;
  /// Keeps `answer` for a key that has none. Call it in a step, with what the answer says.
  void keepAnswer(const std::string& userId, const std::string& key, const std::string& answer);

  /// As `book::recordedMessages`.
  [[nodiscard]] std::vector<RecordedMessage> recordedMessages(const std::string& userId,
                                                              const std::string& exceptKeys) const;

  /// Returns `entry`, which may be new, as the book would have it: with the user's rules for
  /// its payee, the category as the book spells it, the other half of the transfer, when that has
  /// the same reference, and the entry that it looks like. A refund of the category "Refund" gets
  /// that of the last payment to its payee.
  [[nodiscard]] LedgerEntry fitted(LedgerEntry entry) const;
  /// Stores `entry`, a new one that was `fitted` in the same step, and returns its id. Its other
  /// half gets it as the other half.
  std::int64_t add(const LedgerEntry& entry);

  /// Returns the entries that match `filter`, newest first.
  [[nodiscard]] std::vector<LedgerEntry> entries(const EntryFilter& filter) const;
  /// Returns the places of the entries that match `filter`, newest first, at most `filter.most`.
  /// Leaves out days that do not exist.
  [[nodiscard]] std::vector<EntryPlace> places(const EntryFilter& filter) const;
  /// Returns the entry `id`; nullopt when no entry has this id.
  [[nodiscard]] std::optional<LedgerEntry> entry(std::int64_t id) const;
  /// Returns the number of entries in review.
  [[nodiscard]] std::int64_t reviewCount() const;
  /// Returns the booked entries of `period` that sums count. `largest` is `largestSum`, or less
  /// where the sum of all would exceed 64 bits.
  [[nodiscard]] Counted counted(const money::Period& period) const;
  /// Return the sums of the booked entries of `period`, in no particular order. Count amounts above
  /// zero up to `largest`, that of a period that includes this one.
  [[nodiscard]] std::vector<GroupSum<money::Month>> sumsByMonth(const money::Period& period,
                                                                std::int64_t largest) const;
  [[nodiscard]] std::vector<GroupSum<money::Day>> sumsByDay(const money::Period& period,
                                                            std::int64_t largest) const;
  [[nodiscard]] std::vector<GroupSum<NameInMonth>> sumsByName(Names names,
                                                              const money::Period& period,
                                                              std::int64_t largest) const;
  /// Returns the booked expenses of `period`, in the order of their days.
  [[nodiscard]] std::vector<PayeeExpense> expensesByDay(const money::Period& period) const;

  /// For so many days after its own an ignored message is kept.
  static constexpr int keptDays = 30;
  /// Keeps a message, whose number is not read, if its day is not too long ago. Of more than 500
  /// messages only the 400 that were kept last stay.
  void keepIgnored(const IgnoredMessage& message);
  /// Returns the ignored messages, newest first, and their number.
  [[nodiscard]] std::vector<IgnoredMessage> ignored() const;
  [[nodiscard]] std::int64_t ignoredCount() const;
  /// Returns the ignored message `number`; nullopt when it does not exist.
  [[nodiscard]] std::optional<IgnoredMessage> ignored(std::int64_t number) const;
  /// Removes the ignored message `number`; returns false when it does not exist. The answer to its
  /// key stays. In a step of a command the text stays in the file until its 30 days are over, so
  /// that `undo` has it; else it is erased.
  bool removeIgnored(std::int64_t number);

  /// Changes the entry `id`; returns false when no entry has this id. A category gets the spelling
  /// that the book has for it. An entry that was set aside goes to review when all its values can
  /// be. Look-alikes are looked for again. An entry that does not fit its other half any more is
  /// parted from it, as after every change.
  bool edit(std::int64_t id, const EntryChange& change);
  /// Books the entry `id` with the sum `amount`, which was converted from `original`.
  void bookWith(std::int64_t id, const money::Money& amount,
                const std::optional<money::Money>& original);
  /// Books an entry as `entry`, which `fitted` returned, in one step, also one that is booked;
  /// false when that has no sum, or it was edited, set aside or deleted.
  bool bookAs(const LedgerEntry& entry);
  /// Deletes the entry `id` and erases its text from the file; returns false when no entry has this
  /// id. The answer to its key stays. Entries that were marked as its duplicates become duplicates
  /// of the first of them, and its other half has none any more.
  bool remove(std::int64_t id);
  /// Returns the booked entries that look like the halves of transfers between own accounts: of the
  /// same sum, two accounts and opposite directions, two days apart at most. Leaves out refunds,
  /// entries that have an other half, and pairs that `unpair` parted. Each entry is in one pair at
  /// most; the newest come first.
  [[nodiscard]] std::vector<LikelyPair> likelyPairs() const;
  /// Joins two entries that `fitTogether` and have no other half; returns false when they are not
  /// such entries.
  bool pair(std::int64_t one, std::int64_t other);
  /// Parts two halves, or has two entries that no half joins never offered as one; returns false
  /// when one does not exist or has another half, and when this was said before.
  bool unpair(std::int64_t one, std::int64_t other);
  /// Erases the texts of all messages from the file, and with them the ignored messages.
  ForgottenTexts forgetTexts();

  /// Removes all that messages of `userId` left: entries, answers, ignored messages, and the
  /// commands of the history that changed them. Erases their texts from the file. Rules stay, since
  /// they are everybody's. Returns the number of entries.
  std::int64_t erasePerson(const std::string& userId);

  /// Returns the rules for payees, in the order of their patterns.
  [[nodiscard]] std::vector<Rule> rules() const;
  /// Keeps a rule that gives `members` to later messages whose payees match the pattern `payee`, a
  /// category in the spelling of the book. A rule with the same pattern gets them as its own.
  /// nullopt when there are none, and when `payee` has nothing but blanks beside its stars.
  std::optional<KeptRule> keepRule(const std::string& payee, const RuleMembers& members);
  /// As `keepRule`, for exactly the payee of the entry `id`: gives its description and its category
  /// where `change` has them. nullopt also when no entry has this id, or it has no payee.
  std::optional<KeptRule> keepRuleOf(std::int64_t id, const EntryChange& change);
  /// Removes the rule `number` and returns it; nullopt when it does not exist. No entry changes.
  std::optional<Rule> removeRule(std::int64_t number);
  /// Returns the entries that the members given to `kept` would change, but for those that a more
  /// exact rule has.
  [[nodiscard]] EarlierEntries earlierFor(const KeptRule& kept) const;
  /// Changes them, but for those that the user edited, and returns them. They do not count as
  /// edited.
  EarlierEntries changeEarlier(const KeptRule& kept);

  /// Sets the value of one unit of `currency` in the book's currency on `from` and later, up to the
  /// next day that has one; absent for the time before all such days. For messages recorded and
  /// entries accepted later.
  void setRate(const money::CurrencyCode& currency, const money::Rate& rate,
               const std::optional<money::Day>& from = {});
  /// Returns the rate of `currency` on `day`; nullopt when it has none, or none that `Rate` reads.
  [[nodiscard]] std::optional<money::Rate> rate(const money::CurrencyCode& currency,
                                                const money::Day& day) const;
  /// Removes the rate of `currency` that was set from the day `from` on, or all when that is
  /// absent; returns false when there is none.
  bool removeRate(const money::CurrencyCode& currency, const std::optional<money::Day>& from = {});
  /// Returns all rates, also those that `Rate` does not read, by their codes and days.
  [[nodiscard]] std::vector<StoredRate> rates() const;

  /// Returns all entries of accounts that are booked or in review, by account, day and id. A
  /// transfer to the account of cash or from it is an entry of both accounts.
  [[nodiscard]] std::vector<AccountEntry> accountEntries() const;
  /// Returns what the user said of accounts, in the order of their digits.
  [[nodiscard]] std::vector<Account> accounts() const;
  /// Keeps `account` in the place of what was kept for its digits. While `cashAccount` is kept,
  /// with a name, `fitted` makes a withdrawal of cash a transfer to it.
  void keepAccount(const Account& account);
  /// Returns whether `cashAccount` is kept.
  [[nodiscard]] bool keepsCash() const;
  /// Returns the ids of the withdrawals of cash that are expenses, which messages report.
  [[nodiscard]] std::vector<std::int64_t> withdrawals() const;

  /// Returns the standard categories and all that an entry has or had, in the order of their names,
  /// but for those that answers alone use.
  [[nodiscard]] std::vector<std::string> categories() const;
  /// Returns whether an entry or a rule has or had `category`, in any spelling, or it is a standard
  /// category.
  [[nodiscard]] bool knowsCategory(const std::string& category) const;
  /// Keeps `budget` in the place of that of its category for its month, or for all months.
  void setBudget(const Budget& budget);
  /// Removes the budget of `category` for `month` alone, or all of its budgets when that is absent;
  /// returns false when there is none.
  bool removeBudget(const std::string& category, const std::optional<money::Month>& month);
  /// Returns the budgets that hold in `month`, one for each category, in the order of their names.
  [[nodiscard]] std::vector<Budget> budgets(const money::Month& month) const;
  /// Notes that the user was notified of `percent` of the budget of `category` in `month`; returns
  /// false when as much or more was noted before. `undo` does not take it back.
  bool notePassedBudget(const std::string& category, const money::Month& month, int percent);

  /// The most that a book holds: nothing, only what the user set, or also what came of messages:
  /// entries, answers, ignored messages.
  enum class Holds { nothing, settings, payments };
  [[nodiscard]] Holds holds() const;
  /// Writes a backup of the book and of `settings`, as `writeBackup` does, while other processes
  /// use the book.
  HeldPayments backUp(const std::filesystem::path& path, const BackedUpSettings& settings,
                      const std::string& program) const;
  /// Calls `before`, and puts the book of `backup` in the place of this one, in one step. While
  /// `before` runs, no process can change the book; when it throws, nothing is changed. Erases the
  /// replaced texts from the file. The history of commands is empty then.
  void restore(const Backup& backup, const std::function<void()>& before);

  /// Returns the path of the book's file. A change of any process touches a file of its folder.
  [[nodiscard]] std::filesystem::path path() const;
  /// Returns a number that differs from that of the last call when others, another process or
  /// another open book, changed the book meanwhile.
  [[nodiscard]] std::int64_t changesByOthers() const;

  /// Returns whether the file is whole. Reads all of it at the first call and while the note of
  /// damage beside it exists (docs/backup.md). Sets entries aside whose values cannot be. Removes
  /// the note when the file is whole; otherwise prints one line on standard error and leaves it.
  bool isWhole();
  /// Prints one line on standard error about `failure`: for damage the file, the place and what to
  /// do, and leaves the note.
  void tell(const BookFailure& failure) const;

 private:
  struct File;
  explicit Book(std::unique_ptr<File> file);
  void oweErasure();

  std::unique_ptr<File> file_;
};

}  // namespace kivo::book
