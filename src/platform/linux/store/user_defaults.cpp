#include "platform/foundation/user_defaults.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <utility>

#include <sqlite3.h>

#include "platform/foundation/utf8.h"
#include "platform/linux/store/opening_failure.h"
#include "platform/linux/store/replaced_text.h"
#include "platform/linux/store/sqlite_statement.h"
#include "platform/linux/store/suite_database.h"

namespace kivo::platform {
namespace {

using linux_platform::execute;
using linux_platform::OpeningFailure;
using linux_platform::Statement;
using linux_platform::StatementUse;
using linux_platform::tellNotOpened;
using linux_platform::Transaction;

UserDefaults::Value columnValue(const Statement& row, int column) {
  switch (row.type(column)) {
    case SQLITE_INTEGER:
      return row.integer(column);
    case SQLITE_FLOAT:
      return row.real(column);
    case SQLITE_TEXT:
      return repairedUtf8(row.text(column));
    default:
      return std::monostate{};
  }
}

using Written = std::variant<double, std::string>;

// A text up to this length is a number or a date. Every run replaces those, and they contain no
// message.
constexpr std::size_t longestFigure = 24;

// Whether writing `written` over `stored` removes a text. A JSON list with items appended begins
// with the earlier list without its closing bracket, and so removes nothing.
bool takesTextAway(const UserDefaults::Value& stored, const Written& written) {
  const auto* const before = std::get_if<std::string>(&stored);
  if (before == nullptr || before->size() <= longestFigure) return false;
  const auto* const after = std::get_if<std::string>(&written);
  if (after == nullptr) return true;
  return !after->starts_with(std::string_view(*before).substr(0, before->size() - 1));
}

constexpr std::chrono::milliseconds busyTimeout(linux_platform::busyTimeoutInMilliseconds);

// Lets one handle of this process write at a time: SQLite's own lock makes the others sleep and
// poll. After the timeout a handle continues without its turn, and SQLite's lock still protects it.
class WritingTurn {
 public:
  WritingTurn() {
    std::unique_lock lock(mutex);
    taken_ = ended.wait_for(lock, busyTimeout, [] { return !isTaken; });
    if (taken_) isTaken = true;
  }
  ~WritingTurn() {
    if (!taken_) return;
    const std::lock_guard lock(mutex);
    isTaken = false;
    ended.notify_one();
  }
  WritingTurn(const WritingTurn&) = delete;
  WritingTurn& operator=(const WritingTurn&) = delete;

 private:
  inline static std::mutex mutex;
  inline static std::condition_variable ended;
  inline static bool isTaken = false;  // guarded by the mutex
  bool taken_ = false;
};

}  // namespace

struct UserDefaults::Suite {
  linux_platform::Database database;
  mutable Statement reading;
  Statement writing;
  std::map<std::string, Written, std::less<>> pending;
  // SQLite's code of a read that failed since the last flush. Writes after it may be based on a
  // value that was wrongly read as absent, such as the whole queue, and must not replace the stored
  // one.
  mutable int readFailure = SQLITE_OK;

  [[nodiscard]] Value value(std::string_view key) const {
    if (const auto written = pending.find(key); written != pending.end()) {
      return asRead(written->second);
    }
    return stored(key);
  }

  [[nodiscard]] Value stored(std::string_view key) const {
    const StatementUse use(reading);
    if (reading.bind(key).step()) return columnValue(reading, 0);
    if (reading.code() != SQLITE_OK) noteReadFailure(reading.code());
    return {};
  }

  void noteReadFailure(int code) const {
    if (readFailure == SQLITE_OK) report("read", code);
    readFailure = code;
  }

  static void report(const char* what, int code) {
    const std::string line = std::string("the shared store could not be ") + what + ": " +
                             linux_platform::errorText(code) + "\n";
    std::fputs(line.c_str(), stderr);
  }

  static Value asRead(const Written& written) {
    if (const double* const number = std::get_if<double>(&written)) return *number;
    return repairedUtf8(std::get<std::string>(written));
  }

  int write(std::string_view key, const Written& value) {
    const StatementUse use(writing);
    writing.bind(key);
    std::visit([this](const auto& written) { writing.bind(written); }, value);
    writing.step();
    return writing.code();
  }

  [[nodiscard]] bool takesTextAway() const {
    return std::any_of(pending.begin(), pending.end(), [this](const auto& entry) {
      return platform::takesTextAway(stored(entry.first), entry.second);
    });
  }

  int commitUnsynced() {
    execute(database.get(), "PRAGMA synchronous = NORMAL");
    const int code = commit();
    execute(database.get(), "PRAGMA synchronous = FULL");
    return code;
  }

  int commit() {
    const WritingTurn turn;
    if (!writing.isCompiled()) {
      writing = Statement(database.get(),
                          "INSERT INTO defaults (key, value) VALUES (?1, ?2) "
                          "ON CONFLICT (key) DO UPDATE SET value = excluded.value");
    }
    bool textGoes = false;
    const int code = writing.code() == SQLITE_OK ? writePending(textGoes) : writing.code();
    if (textGoes && code == SQLITE_OK) linux_platform::eraseReplacedText(database.get());
    return code;
  }

  int writePending(bool& textGoes) {
    Transaction transaction(database.get());
    int code = transaction.code();
    textGoes = code == SQLITE_OK && takesTextAway();
    if (textGoes) linux_platform::oweErasure(database.get());
    for (auto entry = pending.begin(); code == SQLITE_OK && entry != pending.end(); ++entry) {
      code = write(entry->first, entry->second);
    }
    return code == SQLITE_OK ? transaction.commit() : code;
  }

  bool flush(int (Suite::*committing)()) {
    const int failure = std::exchange(readFailure, SQLITE_OK);
    if (pending.empty()) return true;
    const int code = failure == SQLITE_OK ? (this->*committing)() : failure;
    pending.clear();
    if (code != SQLITE_OK) report("written", code);
    return code == SQLITE_OK;
  }
};

UserDefaults::UserDefaults(std::unique_ptr<Suite> suite) : suite_(std::move(suite)) {}
UserDefaults::UserDefaults(UserDefaults&& other) noexcept = default;
UserDefaults& UserDefaults::operator=(UserDefaults&& other) noexcept = default;
UserDefaults::~UserDefaults() = default;

std::optional<UserDefaults> UserDefaults::initWithSuiteName(std::string_view suiteName) {
  try {
    auto suite = std::make_unique<Suite>();
    suite->database = linux_platform::openSuiteDatabase(suiteName);
    suite->reading = Statement(suite->database.get(), "SELECT value FROM defaults WHERE key = ?1");
    if (!suite->reading.isCompiled()) {  // the table is missing or has other columns
      throw OpeningFailure::isDamaged(linux_platform::fileOf(suite->database.get()));
    }
    return UserDefaults(std::move(suite));
  } catch (const OpeningFailure& failure) {
    tellNotOpened(failure);
    return std::nullopt;
  }
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
  Value value = suite_->value(key);
  if (auto* const text = std::get_if<std::string>(&value)) return std::move(*text);
  return std::nullopt;
}

double UserDefaults::doubleForKey(std::string_view key) const {
  const Value value = suite_->value(key);
  if (const auto* const number = std::get_if<double>(&value)) return *number;
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    return static_cast<double>(*number);
  }
  return 0;
}

std::map<std::string, UserDefaults::Value> UserDefaults::dictionaryRepresentation() const {
  std::map<std::string, Value> all;
  Statement listing(suite_->database.get(), "SELECT key, value FROM defaults");
  while (listing.step()) {
    all.insert_or_assign(repairedUtf8(listing.text(0)), columnValue(listing, 1));
  }
  for (const auto& [key, written] : suite_->pending) {
    all.insert_or_assign(repairedUtf8(key), Suite::asRead(written));
  }
  return all;
}

void UserDefaults::setObject(std::string_view key, std::string_view text) {
  suite_->pending.insert_or_assign(std::string(key), std::string(text));
}

void UserDefaults::setDouble(std::string_view key, double value) {
  suite_->pending.insert_or_assign(std::string(key), value);
}

bool UserDefaults::synchronize() { return suite_->flush(&Suite::commit); }

bool UserDefaults::publish() { return suite_->flush(&Suite::commitUnsynced); }

}  // namespace kivo::platform
