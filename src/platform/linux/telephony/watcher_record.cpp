#include "platform/linux/telephony/watcher_record.h"

#include <array>
#include <cstdint>
#include <iostream>
#include <string_view>
#include <utility>

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <sqlite3.h>
#include <sys/random.h>

#include "platform/linux/foundation/suite_database.h"

namespace kivo::linux_platform {
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

// One statement with its values; gone when it goes out of scope.
class Query {
 public:
  Query(sqlite3* database, const char* sql) { prepare(database, sql, statement_); }
  Query& bind(std::string_view text) {
    sqlite3_bind_text(statement_.get(), ++bound_, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
    return *this;
  }
  Query& bind(std::int64_t value) {
    sqlite3_bind_int64(statement_.get(), ++bound_, value);
    return *this;
  }
  int step() { return sqlite3_step(statement_.get()); }
  [[nodiscard]] bool run() { return step() == SQLITE_DONE; }
  [[nodiscard]] sqlite3_stmt* row() const { return statement_.get(); }

 private:
  Statement statement_;
  int bound_ = 0;
};

// The value is of the table's second column, whose type may be any.
std::optional<std::string> textUnder(sqlite3* database, const char* key) {
  Query query(database, "SELECT value FROM defaults WHERE key = ? AND typeof(value) = 'text'");
  if (query.bind(key).step() != SQLITE_ROW) return std::nullopt;
  const void* const bytes = sqlite3_column_blob(query.row(), 0);
  const auto length = static_cast<std::size_t>(sqlite3_column_bytes(query.row(), 0));
  return std::string(static_cast<const char*>(bytes), length);
}

// The salt, made once for ever; none when it can be neither read nor written.
std::optional<std::string> saltOf(sqlite3* database) {
  if (auto salt = textUnder(database, saltKey)) return salt;
  const auto salt = randomSalt();
  if (!salt) return std::nullopt;
  Query insert(database, "INSERT OR IGNORE INTO defaults VALUES (?, ?)");
  if (!insert.bind(saltKey).bind(*salt).run()) return std::nullopt;
  return textUnder(database, saltKey);
}

void complainOfDisk() {
  std::cerr << "kivo-sms-watcher: the record of handled messages cannot be used\n";
}

// Runs `steps` as one transaction; false when it is not durable.
template <typename Steps>
bool transaction(sqlite3* database, const Steps& steps) {
  const bool done = execute(database, "BEGIN IMMEDIATE") == SQLITE_OK && steps() &&
                    execute(database, "COMMIT") == SQLITE_OK;
  if (sqlite3_get_autocommit(database) == 0) execute(database, "ROLLBACK");
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

std::optional<WatcherRecord> WatcherRecord::open(int remembered) {
  Database database = openSuiteDatabase(suiteName);
  if (!database) return std::nullopt;
  auto salt = saltOf(database.get());
  if (!salt) return std::nullopt;
  return WatcherRecord(
      std::make_unique<Suite>(Suite{std::move(database), std::move(*salt), remembered}));
}

std::string WatcherRecord::markOf(const std::string& number, const std::string& sent,
                                  const std::string& text) const {
  const std::string end(1, '\0');  // is in none of the three
  return messagePrefix + suite_->hash(number + end + sent + end + text);
}

bool WatcherRecord::isHandled(const std::string& mark) const {
  Query query(suite_->database.get(), "SELECT 1 FROM defaults WHERE key = ?");
  const int code = query.bind(mark).step();
  if (code != SQLITE_ROW && code != SQLITE_DONE) complainOfDisk();
  return code != SQLITE_DONE;
}

bool WatcherRecord::setHandled(const std::string& mark, Moment now) {
  Query insert(suite_->database.get(), "INSERT OR REPLACE INTO defaults VALUES (?, ?)");
  const bool written = insert.bind(mark).bind(number(now)).run();
  if (!written) complainOfDisk();
  return written;
}

void WatcherRecord::heldByModems(const std::set<std::string>& marks, Moment now) {
  sqlite3* const database = suite_->database.get();
  transaction(database, [&] {
    for (const std::string& mark : marks) {
      Query held(database, "UPDATE defaults SET value = ? WHERE key = ?");
      if (!held.bind(number(now)).bind(mark).run()) return false;
    }
    Query forget(database,
                 "DELETE FROM defaults WHERE key IN (SELECT key FROM defaults WHERE key GLOB "
                 "'message.*' AND value <> ? ORDER BY value DESC LIMIT -1 OFFSET ?)");
    return forget.bind(number(now)).bind(std::int64_t{suite_->remembered}).run();
  });
}

std::map<std::string, Moment> WatcherRecord::namedSince(const std::vector<std::string>& senders,
                                                        Moment named) {
  sqlite3* const database = suite_->database.get();
  std::map<std::string, Moment> since;
  std::set<std::string> keys;
  transaction(database, [&] {
    for (const std::string& sender : senders) {
      const std::string key = senderPrefix + suite_->hash(sender);
      Query insert(database, "INSERT OR IGNORE INTO defaults VALUES (?, ?)");
      if (!insert.bind(key).bind(number(named)).run()) return false;
      Query query(database, "SELECT value FROM defaults WHERE key = ?");
      if (query.bind(key).step() != SQLITE_ROW) return false;
      since[sender] = moment(sqlite3_column_int64(query.row(), 0));
      keys.insert(key);
    }
    std::set<std::string> known;
    Query all(database, "SELECT key FROM defaults WHERE key GLOB 'sender.*'");
    while (all.step() == SQLITE_ROW) {
      known.emplace(reinterpret_cast<const char*>(sqlite3_column_text(all.row(), 0)));
    }
    for (const std::string& key : known) {
      Query forget(database, "DELETE FROM defaults WHERE key = ?");
      if (!keys.contains(key) && !forget.bind(key).run()) return false;
    }
    return true;
  });
  for (const std::string& sender : senders) since.emplace(sender, named);
  return since;
}

}  // namespace kivo::linux_platform
