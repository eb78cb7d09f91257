#include "book/book.h"

#include <utility>

#include "book/book_accounts.h"
#include "book/book_categories.h"
#include "book/book_command.h"
#include "book/book_rates.h"
#include "book/book_state.h"
#include "book/book_sums.h"
#include "book/current_day.h"
#include "book/database.h"
#include "book/erased_person.h"
#include "book/history.h"
#include "book/ignored_messages.h"
#include "book/look_alikes.h"
#include "book/pairs.h"
#include "book/refund_category.h"
#include "book/rules.h"
#include "book/sqlite_database.h"
#include "book/stored_entry.h"

namespace kivo::book {

namespace {

// That of `BooksFrom`, while one lives.
BooksFrom::Open& chosenOpen() {
  static BooksFrom::Open open;
  return open;
}

money::Day firstKeptDay() { return currentDay().before(Book::keptDays); }

// The category gets its spelling from the book.
void applyTo(LedgerEntry& entry, const EntryChange& change) {
  if (change.date) {
    entry.date = *change.date;
    entry.impossibleDate.reset();
  }
  if (change.kind) setKind(entry, *change.kind);
  if (change.amount) {
    entry.amount = change.amount;
    entry.original = change.original;
    entry.impossibleCurrency.reset();
  }
  if (change.refund) entry.refund = *change.refund && entry.kind == money::Kind::income;
  if (change.description) entry.description = *change.description;
}

// Notes for a command until the end of a scope.
class NotedFor {
 public:
  NotedFor(ChangeNotes& notes, std::int64_t command) : notes_(notes) { notes_.noteFor(command); }
  ~NotedFor() { notes_.noteFor(std::nullopt); }
  NotedFor(const NotedFor&) = delete;
  NotedFor& operator=(const NotedFor&) = delete;

 private:
  ChangeNotes& notes_;
};

// Sets a mark until the end of a scope.
class Marked {
 public:
  explicit Marked(bool& mark) : mark_(mark) { mark_ = true; }
  ~Marked() { mark_ = false; }
  Marked(const Marked&) = delete;
  Marked& operator=(const Marked&) = delete;

 private:
  bool& mark_;
};

}  // namespace

Book::Book(std::unique_ptr<File> file) : file_(std::move(file)) {}
Book::Book(Book&& other) noexcept = default;
Book& Book::operator=(Book&& other) noexcept = default;
Book::~Book() = default;

BooksFrom::BooksFrom(Open open) : before_(std::exchange(chosenOpen(), std::move(open))) {}
BooksFrom::~BooksFrom() { chosenOpen() = std::move(before_); }

Book Book::open() {
  return Book(std::make_unique<File>(File{chosenOpen() ? chosenOpen()() : openSqliteBook()}));
}

void Book::inOneStep(const std::function<void()>& steps) {
  if (file_->isInStep) return steps();
  {
    const Marked inStep(file_->isInStep);
    file_->owesErasure = false;
    file_->database.inTransaction([&] {
      const bool outdated =
          hasIgnored(file_->database) && deleteIgnoredBefore(file_->database, firstKeptDay());
      if (outdated) oweErasure();
      steps();
    });
  }
  if (file_->owesErasure) file_->database.eraseDeletedTexts();
}

// Call it in a step that deletes a text.
void Book::oweErasure() {
  file_->database.oweErasure();
  file_->owesErasure = true;
}

void Book::asCommand(UserCommand& command, const std::function<void()>& steps) {
  if (file_->notes.command()) return inOneStep(steps);
  auto number = command.number;
  inOneStep([&] {
    if (number && !hasCommand(file_->database, *number)) {
      throw linux_platform::Failure(bookCommand("undo") + " took it back while it ran");
    }
    if (!number) number = insertCommand(file_->database, command);
    const NotedFor noted(file_->notes, *number);
    steps();
    writeTemplate(file_->database, *number, command.addedTemplate);
    const bool isKept = command.number || file_->notes.any() || !command.addedTemplate.empty();
    if (isKept) return;
    deleteCommand(file_->database, *number);
    number.reset();
  });
  command.number = number;
}

std::vector<PastCommand> Book::history() const { return pastCommands(file_->database, -1); }

std::vector<PastCommand> Book::undo(std::int64_t count) {
  std::vector<PastCommand> undone;
  inOneStep([&] {
    for (std::int64_t left = count; left > 0; --left) {
      const auto last = pastCommands(file_->database, 1);
      if (last.empty()) break;
      const std::int64_t number = last.front().number;
      takeBack(file_->database, number);
      repairHalvesAfter(file_->database, number);
      markAlikeAgainAfter(file_->database, number);
      deleteCommand(file_->database, number);
      undone.push_back(last.front());
    }
    if (!undone.empty()) oweErasure();
  });
  return undone;
}

void Book::atOneMoment(const std::function<void()>& reads) const {
  file_->database.inSnapshot(reads);
}

std::optional<std::string> Book::answer(const std::string& userId, const std::string& key) const {
  Statement query(file_->database, "SELECT answer FROM answers WHERE user = ? AND key = ?");
  if (!next(query.bind(userId).bind(key))) return std::nullopt;
  return query.text(0);
}

void Book::keepAnswer(const std::string& userId, const std::string& key,
                      const std::string& answer) {
  Statement insertion(file_->database, "INSERT INTO answers (user, key, answer) VALUES (?, ?, ?)");
  run(insertion.bind(userId).bind(key).bind(answer));
  file_->notes.answer(userId, key);
}

std::vector<RecordedMessage> Book::recordedMessages(const std::string& userId,
                                                    const std::string& exceptKeys) const {
  return book::recordedMessages(file_->database, userId, exceptKeys);
}

LedgerEntry Book::fitted(LedgerEntry entry) const {
  if (entry.refund && entry.category == "Refund") {
    entry.category = refundCategory(file_->database, entry);
  }
  const bool isWithdrawal = entry.kind == money::Kind::expense && entry.category == cashCategory &&
                            entry.account != cashAccount;
  if (isWithdrawal && keepsCash()) setKind(entry, money::Kind::transfer);
  applyRules(file_->database, entry);
  entry.category = spelledCategory(file_->database, entry.category, entry.id);
  if (!entry.counterpart) entry.counterpart = otherHalf(file_->database, entry);
  entry.possibleDuplicateOf = firstAlike(file_->database, entry);
  return entry;
}

std::int64_t Book::add(const LedgerEntry& entry) {
  keepCategory(file_->database, file_->notes, entry.category);
  const std::int64_t id = insertEntry(file_->database, entry);
  file_->notes.addedTransaction(id);
  if (entry.counterpart) join(file_->database, file_->notes, id, *entry.counterpart);
  return id;
}

std::vector<LedgerEntry> Book::entries(const EntryFilter& filter) const {
  return storedEntries(file_->database, filter);
}

std::vector<EntryPlace> Book::places(const EntryFilter& filter) const {
  return placesOfEntries(file_->database, filter);
}

std::optional<LedgerEntry> Book::entry(std::int64_t id) const {
  return storedEntry(file_->database, id);
}

std::int64_t Book::reviewCount() const {
  Statement query(file_->database, "SELECT count(*) FROM transactions WHERE state = 'review'");
  return next(query) ? query.integer(0) : 0;
}

Counted Book::counted(const money::Period& period) const {
  return countedIn(file_->database, period);
}

std::vector<GroupSum<money::Month>> Book::sumsByMonth(const money::Period& period,
                                                      std::int64_t largest) const {
  return book::sumsByMonth(file_->database, {period, largest});
}

std::vector<GroupSum<money::Day>> Book::sumsByDay(const money::Period& period,
                                                  std::int64_t largest) const {
  return book::sumsByDay(file_->database, {period, largest});
}

std::vector<GroupSum<NameInMonth>> Book::sumsByName(Names names, const money::Period& period,
                                                    std::int64_t largest) const {
  return book::sumsByName(file_->database, names, {period, largest});
}

std::vector<PayeeExpense> Book::expensesByDay(const money::Period& period) const {
  return book::expensesByDay(file_->database, period);
}

void Book::keepIgnored(const IgnoredMessage& message) {
  if (message.date < firstKeptDay()) return;
  inOneStep([&] {
    insertIgnored(file_->database, message);
    if (deleteSurplusIgnored(file_->database)) oweErasure();
  });
}

std::vector<IgnoredMessage> Book::ignored() const {
  return storedIgnored(file_->database, firstKeptDay());
}

std::int64_t Book::ignoredCount() const {
  return book::ignoredCount(file_->database, firstKeptDay());
}

std::optional<IgnoredMessage> Book::ignored(std::int64_t number) const {
  return storedIgnored(file_->database, number, firstKeptDay());
}

bool Book::removeIgnored(std::int64_t number) {
  bool found = false;
  inOneStep([&] {
    if (const auto command = file_->notes.command()) {
      found = takeIgnored(file_->database, number, *command);
      if (found) file_->notes.lasting();
      return;
    }
    found = deleteIgnored(file_->database, number);
    if (found) oweErasure();
  });
  return found;
}

bool Book::edit(std::int64_t id, const EntryChange& change) {
  bool found = false;
  inOneStep([&] {
    auto edited = entry(id);
    found = edited.has_value();
    if (!found) return;
    const bool wasRefund = edited->refund;
    applyTo(*edited, change);
    auto category = change.category;
    if (!category && edited->refund && !wasRefund) {
      category = refundCategory(file_->database, *edited);
    }
    if (category) edited->category = keepCategory(file_->database, file_->notes, *category, id);
    const bool corrected =
        edited->state == LedgerEntry::State::setAside && impossibleValue(*edited).empty();
    if (corrected) edited->state = LedgerEntry::State::review;
    file_->notes.transaction(id);
    writeEdited(file_->database, *edited);
    markAlikeAgain(file_->database, id);
    partUnfit(file_->database, file_->notes, id);
  });
  return found;
}

void Book::bookWith(std::int64_t id, const money::Money& amount,
                    const std::optional<money::Money>& original) {
  inOneStep([&] {
    file_->notes.transaction(id);
    writeBookedSum(file_->database, id, amount, original);
    markAlikeAgain(file_->database, id);
    pairAgain(file_->database, file_->notes, id);
  });
}

bool Book::bookAs(const LedgerEntry& entry) {
  if (!entry.amount) return false;
  bool isWritten = false;
  inOneStep([&] {
    LedgerEntry kept = entry;
    kept.category = keepCategory(file_->database, file_->notes, entry.category, entry.id);
    file_->notes.transaction(entry.id);
    isWritten = writeBooked(file_->database, kept);
    if (!isWritten) return;
    markAlikeAgain(file_->database, entry.id);
    pairAgain(file_->database, file_->notes, entry.id);
  });
  return isWritten;
}

bool Book::remove(std::int64_t id) {
  bool found = false;
  inOneStep([&] {
    const auto removed = entry(id);
    found = removed.has_value();
    if (!found) return;
    file_->notes.transaction(id);
    freeOtherHalf(file_->database, file_->notes, id);
    Statement removal(file_->database, "DELETE FROM transactions WHERE id = ?");
    run(removal.bind(id));
    deleteTaken(file_->database, removed->userId, removed->key);
    markAlikeAgain(file_->database, id);
    oweErasure();
  });
  return found;
}

std::vector<LikelyPair> Book::likelyPairs() const { return book::likelyPairs(file_->database); }

bool Book::pair(std::int64_t one, std::int64_t other) {
  bool found = false;
  inOneStep([&] { found = pairEntries(file_->database, file_->notes, one, other); });
  return found;
}

bool Book::unpair(std::int64_t one, std::int64_t other) {
  bool found = false;
  inOneStep([&] { found = unpairEntries(file_->database, file_->notes, one, other); });
  return found;
}

ForgottenTexts Book::forgetTexts() {
  ForgottenTexts forgotten;
  inOneStep([&] {
    Statement counting(file_->database,
                       "SELECT count(text), (SELECT count(*) FROM ignored) FROM transactions");
    if (next(counting)) forgotten = {counting.integer(0), counting.integer(1)};
    oweErasure();
    deleteAllIgnored(file_->database);
    Statement update(file_->database, "UPDATE transactions SET text = NULL WHERE text IS NOT NULL");
    run(update);
    file_->notes.lasting();
  });
  return forgotten;
}

std::int64_t Book::erasePerson(const std::string& userId) {
  std::int64_t erased = 0;
  inOneStep([&] {
    oweErasure();
    erased = book::erasePerson(file_->database, userId);
  });
  return erased;
}

void Book::setRate(const money::CurrencyCode& currency, const money::Rate& rate,
                   const std::optional<money::Day>& from) {
  inOneStep([&] {
    file_->notes.ratesOf(currency.text());
    book::setRate(file_->database, currency, rate, from);
  });
}

std::optional<money::Rate> Book::rate(const money::CurrencyCode& currency,
                                      const money::Day& day) const {
  return rateOf(file_->database, currency, day);
}

bool Book::removeRate(const money::CurrencyCode& currency, const std::optional<money::Day>& from) {
  bool found = false;
  inOneStep([&] {
    found = hasRate(file_->database, currency, from);
    if (!found) return;
    file_->notes.ratesOf(currency.text());
    removeRates(file_->database, currency, from);
  });
  return found;
}

std::vector<StoredRate> Book::rates() const { return allRates(file_->database); }

std::vector<AccountEntry> Book::accountEntries() const {
  return book::accountEntries(file_->database);
}

std::vector<Account> Book::accounts() const { return keptAccounts(file_->database); }

void Book::keepAccount(const Account& account) {
  inOneStep([&] {
    file_->notes.account(account.digits);
    writeAccount(file_->database, account);
  });
}

bool Book::keepsCash() const { return book::keepsCash(file_->database); }

std::vector<std::int64_t> Book::withdrawals() const { return book::withdrawals(file_->database); }

Book::Holds Book::holds() const {
  Statement query(file_->database, R"(
    SELECT EXISTS (SELECT 1 FROM transactions) OR EXISTS (SELECT 1 FROM answers) OR
        EXISTS (SELECT 1 FROM ignored),
      EXISTS (SELECT 1 FROM rules) OR EXISTS (SELECT 1 FROM rates) OR
        EXISTS (SELECT 1 FROM accounts) OR EXISTS (SELECT 1 FROM budgets))");
  if (!next(query)) return Holds::nothing;
  if (query.integer(0) != 0) return Holds::payments;
  return query.integer(1) != 0 ? Holds::settings : Holds::nothing;
}

HeldPayments Book::backUp(const std::filesystem::path& path, const BackedUpSettings& settings,
                          const std::string& program) const {
  return file_->database.backUp(path, settings, program);
}

void Book::restore(const Backup& backup, const std::function<void()>& before) {
  file_->database.withReplacement(backup, [&](const std::function<void()>& replace) {
    inOneStep([&] {
      before();
      oweErasure();
      replace();
    });
  });
}

std::filesystem::path Book::path() const { return file_->database.path(); }

std::int64_t Book::changesByOthers() const { return file_->database.changesByOthers(); }

bool Book::isWhole() { return file_->database.isWhole(); }

void Book::tell(const BookFailure& failure) const { file_->database.tell(failure); }

}  // namespace kivo::book
