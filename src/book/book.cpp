#include "book/book.h"

#include <utility>

#include "book/book_categories.h"
#include "book/book_damage.h"
#include "book/book_file.h"
#include "book/book_rates.h"
#include "book/book_sums.h"
#include "book/current_day.h"
#include "book/ignored_messages.h"
#include "book/payee_memory.h"
#include "book/stored_entry.h"
#include "platform/linux/store/replaced_text.h"

namespace kivo::book {

using linux_platform::Statement;

namespace {

money::Day firstKeptDay() { return currentDay().before(Book::keptDays); }

// The category gets its spelling from the book.
void applyTo(LedgerEntry& entry, const EntryChange& change) {
  if (change.date) {
    entry.date = *change.date;
    entry.impossibleDate.reset();
  }
  if (change.kind) entry.kind = *change.kind;
  if (change.amount) {
    entry.amount = change.amount;
    entry.impossibleCurrency.reset();
  }
  if (change.description) entry.description = *change.description;
}

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

struct Book::File {
  linux_platform::Database owner;
  sqlite3* database = owner.get();
  bool wasChecked = false;
  bool isInStep = false;
  // Whether the step that runs deletes texts.
  bool owesErasure = false;
};

Book::Book(std::unique_ptr<File> file) : file_(std::move(file)) {}
Book::Book(Book&& other) noexcept = default;
Book& Book::operator=(Book&& other) noexcept = default;
Book::~Book() = default;

Book Book::open() { return Book(std::make_unique<File>(File{openBookFile()})); }

void Book::inOneStep(const std::function<void()>& steps) {
  if (file_->isInStep) return steps();
  {
    const Marked inStep(file_->isInStep);
    file_->owesErasure = false;
    WriteTransaction transaction(file_->database);
    const bool outdated =
        hasIgnored(file_->database) && deleteIgnoredBefore(file_->database, firstKeptDay());
    if (outdated) oweErasure();
    steps();
    transaction.commit();
  }
  if (file_->owesErasure) linux_platform::eraseReplacedText(file_->database);
}

// Call it in a step that deletes a text.
void Book::oweErasure() {
  linux_platform::oweErasure(file_->database);
  file_->owesErasure = true;
}

void Book::atOneMoment(const std::function<void()>& reads) const {
  const linux_platform::Transaction transaction(file_->database, "BEGIN");
  require(transaction.code());
  reads();
}

std::optional<std::string> Book::answer(const std::string& userId, const std::string& key) const {
  Statement query(file_->database, "SELECT answer FROM answers WHERE user = ? AND key = ?");
  if (!next(query.bind(userId).bind(key))) return std::nullopt;
  return query.text(0);
}

void Book::keepAnswer(const std::string& userId, const std::string& key,
                      const std::string& answer) {
  Statement insertion(file_->database, "INSERT INTO answers VALUES (?, ?, ?)");
  run(insertion.bind(userId).bind(key).bind(answer));
}

LedgerEntry Book::fitted(LedgerEntry entry) const {
  applyCorrection(file_->database, entry);
  entry.category = spelledCategory(file_->database, entry.category, entry.id);
  entry.possibleDuplicateOf = firstAlike(file_->database, entry);
  return entry;
}

std::int64_t Book::add(const LedgerEntry& entry) {
  keepCategory(file_->database, entry.category);
  return insertEntry(file_->database, entry);
}

std::vector<LedgerEntry> Book::entries(const EntryFilter& filter) const {
  return storedEntries(file_->database, filter);
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

std::vector<GroupSum<std::string>> Book::sumsByName(Names names, const money::Period& period,
                                                    std::int64_t largest) const {
  return book::sumsByName(file_->database, names, {period, largest});
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
    applyTo(*edited, change);
    if (change.category) edited->category = keepCategory(file_->database, *change.category, id);
    const bool corrected =
        edited->state == LedgerEntry::State::setAside && impossibleValue(*edited).empty();
    if (corrected) edited->state = LedgerEntry::State::review;
    writeEdited(file_->database, *edited);
    markAlikeAgain(file_->database, id);
    keepCorrection(file_->database, *edited, change);
  });
  return found;
}

void Book::bookWith(std::int64_t id, const money::Money& amount) {
  Statement update(file_->database, R"(
    UPDATE transactions SET state = 'booked', minor_units = ?, currency = ? WHERE id = ?)");
  const std::string currency = amount.currency.text();
  run(update.bind(amount.minorUnits).bind(currency).bind(id));
  markAlikeAgain(file_->database, id);
}

bool Book::bookAs(const LedgerEntry& entry) {
  if (!entry.amount) return false;
  bool isWritten = false;
  inOneStep([&] {
    LedgerEntry kept = entry;
    kept.category = keepCategory(file_->database, entry.category, entry.id);
    isWritten = writeBooked(file_->database, kept);
    if (isWritten) markAlikeAgain(file_->database, entry.id);
  });
  return isWritten;
}

bool Book::remove(std::int64_t id) {
  bool found = false;
  inOneStep([&] {
    Statement removal(file_->database, "DELETE FROM transactions WHERE id = ? RETURNING id");
    found = next(removal.bind(id));
    if (!found) return;
    run(removal);
    markAlikeAgain(file_->database, id);
    oweErasure();
  });
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
  });
  return forgotten;
}

void Book::setRate(const money::CurrencyCode& currency, const money::Rate& rate) {
  inOneStep([&] { book::setRate(file_->database, currency, rate); });
}

std::optional<money::Rate> Book::rate(const money::CurrencyCode& currency) const {
  return rateOf(file_->database, currency);
}

bool Book::removeRate(const money::CurrencyCode& currency) {
  bool found = false;
  inOneStep([&] { found = book::removeRate(file_->database, currency); });
  return found;
}

std::vector<std::pair<std::string, std::string>> Book::rates() const {
  return allRates(file_->database);
}

bool Book::isWhole() {
  if (file_->wasChecked && !isDamageNoted(file_->database)) return true;
  file_->wasChecked = checkWhole(file_->database);
  return file_->wasChecked;
}

void Book::tell(const BookFailure& failure) const { tellFailure(file_->database, failure); }

}  // namespace kivo::book
