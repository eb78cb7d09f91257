#include "sms_watcher/watcher_record.h"

#include <array>
#include <cstdint>
#include <iostream>
#include <string_view>
#include <utility>

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <sqlite3.h>
#include <sys/random.h>

#include "platform/linux/store/opening_failure.h"
#include "platform/linux/store/sqlite_statement.h"
#include "platform/linux/store/suite_database.h"

namespace kivo {

using linux_platform::Database;
using linux_platform::Failure;
using linux_platform::OpeningFailure;
using linux_platform::openSuiteDatabase;
using linux_platform::Statement;
using linux_platform::Transaction;

namespace {

using platform::Moment;

constexpr const char* suiteName = "app.kivo.SmsWatcher";
constexpr const char* saltKey = "salt";
constexpr const char* messagePrefix = "message.";
constexpr const char* senderPrefix = "sender.";

std::string hexadecimal(const unsigned char* bytes, std::size_t count) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += {digits[bytes[i] / 16], digits[bytes[i] % 16]};
  return text;
}

std::optional<std::string> randomSalt() {
  std::array<unsigned char, 32> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    return std::nullopt;
  }
  return hexadecimal(bytes.data(), bytes.size());
}

std::int64_t number(Moment moment) { return moment.time_since_epoch().count(); }

Moment moment(std::int64_t number) { return Moment(std::chrono::microseconds(number)); }

// The table's second column may hold any type.
std::optional<std::string> textUnder(sqlite3* database, const char* key) {
  Statement query(database, "SELECT value FROM defaults WHERE key = ? AND typeof(value) = 'text'");
  if (!query.bind(key).step()) return std::nullopt;
  return query.text(0);
}

// Returns the salt, which is created once; nullopt when it can be neither read nor written.
std::optional<std::string> saltOf(sqlite3* database) {
  if (auto salt = textUnder(database, saltKey)) return salt;
  const auto salt = randomSalt();
  if (!salt) return std::nullopt;
  Statement insert(database, "INSERT OR IGNORE INTO defaults VALUES (?, ?)");
  if (!insert.bind(saltKey).bind(*salt).run()) return std::nullopt;
  return textUnder(database, saltKey);
}

void complainOfDisk() {
  std::cerr << "kivo-sms-watcher: the record of handled messages cannot be used\n";
}

// Runs `steps` in one transaction; false when it was not committed.
template <typename Steps>
bool inTransaction(sqlite3* database, const Steps& steps) {
  Transaction transaction(database);
  const bool done = transaction.code() == SQLITE_OK && steps() && transaction.commit() == SQLITE_OK;
  if (!done) complainOfDisk();
  return done;
}

}  // namespace

struct WatcherRecord::Suite {
  Database database;
  std::string salt;
  int remembered;

  [[nodiscard]] std::string hash(const std::string& data) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    HMAC(EVP_sha256(), salt.data(), static_cast<int>(salt.size()),
         reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest.data(), &length);
    return hexadecimal(digest.data(), length);
  }
};

WatcherRecord::WatcherRecord(std::unique_ptr<Suite> suite) : suite_(std::move(suite)) {}
WatcherRecord::WatcherRecord(WatcherRecord&& other) noexcept = default;
WatcherRecord& WatcherRecord::operator=(WatcherRecord&& other) noexcept = default;
WatcherRecord::~WatcherRecord() = default;

WatcherRecord WatcherRecord::open(int remembered) {
  const Failure failure("the record of handled messages cannot be opened");
  try {
    Database database = openSuiteDatabase(suiteName);
    auto salt = saltOf(database.get());
    if (!salt) throw failure;
    return WatcherRecord(
        std::make_unique<Suite>(Suite{std::move(database), std::move(*salt), remembered}));
  } catch (const OpeningFailure& reason) {
    tellNotOpened(reason);
    throw failure;
  }
}

std::string WatcherRecord::markOf(const std::string& number, const std::string& sent,
                                  const std::string& text) const {
  const std::string end(1, '\0');  // none of the three contains it
  return messagePrefix + suite_->hash(number + end + sent + end + text);
}

bool WatcherRecord::isHandled(const std::string& mark) const {
  Statement query(suite_->database.get(), "SELECT 1 FROM defaults WHERE key = ?");
  const bool handled = query.bind(mark).step();
  if (query.code() != SQLITE_OK) complainOfDisk();
  return handled || query.code() != SQLITE_OK;
}

bool WatcherRecord::setHandled(const std::string& mark, Moment now) {
  Statement insert(suite_->database.get(), "INSERT OR REPLACE INTO defaults VALUES (?, ?)");
  const bool written = insert.bind(mark).bind(number(now)).run();
  if (!written) complainOfDisk();
  return written;
}

void WatcherRecord::heldByModems(const std::set<std::string>& marks, Moment now) {
  sqlite3* const database = suite_->database.get();
  inTransaction(database, [&] {
    for (const std::string& mark : marks) {
      Statement held(database, "UPDATE defaults SET value = ? WHERE key = ?");
      if (!held.bind(number(now)).bind(mark).run()) return false;
    }
    Statement forget(database,
                     "DELETE FROM defaults WHERE key IN (SELECT key FROM defaults WHERE key GLOB "
                     "'message.*' AND value <> ? ORDER BY value DESC LIMIT -1 OFFSET ?)");
    return forget.bind(number(now)).bind(std::int64_t{suite_->remembered}).run();
  });
}

std::map<std::string, Moment> WatcherRecord::namedSince(const std::vector<std::string>& senders,
                                                        Moment named, Moment now) {
  sqlite3* const database = suite_->database.get();
  std::map<std::string, Moment> since;
  std::set<std::string> keys;
  inTransaction(database, [&] {
    for (const std::string& sender : senders) {
      const std::string key = senderPrefix + suite_->hash(sender);
      Statement insert(database,
                       "INSERT INTO defaults VALUES (?, ?) ON CONFLICT (key) DO UPDATE SET value = "
                       "excluded.value WHERE value > ?");
      if (!insert.bind(key).bind(number(named)).bind(number(now)).run()) return false;
      Statement query(database, "SELECT value FROM defaults WHERE key = ?");
      if (!query.bind(key).step()) return false;
      since[sender] = moment(query.integer(0));
      keys.insert(key);
    }
    std::set<std::string> known;
    Statement all(database, "SELECT key FROM defaults WHERE key GLOB 'sender.*'");
    while (all.step()) known.insert(all.text(0));
    for (const std::string& key : known) {
      Statement forget(database, "DELETE FROM defaults WHERE key = ?");
      if (!keys.contains(key) && !forget.bind(key).run()) return false;
    }
    return true;
  });
  for (const std::string& sender : senders) since.emplace(sender, named);
  return since;
}

}  // namespace kivo
