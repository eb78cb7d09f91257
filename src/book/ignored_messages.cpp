#include "book/ignored_messages.h"

#include <string>

#include "book/book_command.h"
#include "book/database.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

// A flood of messages fills no disk: 500 texts of 4,096 bytes. When there are more, the oldest go
// a hundred at a time, since erasing them rebuilds the file.
constexpr std::int64_t mostKept = 500;
constexpr std::int64_t keptOfMore = 400;

constexpr const char* messageColumns = "number, key, user, date, reason, text";

// Absent when a damaged file holds a day or a reason that cannot be.
std::optional<IgnoredMessage> messageOf(const Statement& row) {
  const auto date = money::Day::fromText(row.text(3));
  const auto reason = reasonFromText(row.text(4));
  if (!date || !reason) return std::nullopt;
  return IgnoredMessage{.number = row.integer(0),
                        .key = platform::repairedUtf8(row.text(1)),
                        .userId = row.text(2),
                        .date = *date,
                        .reason = *reason,
                        .text = platform::repairedUtf8(row.text(5))};
}

// Runs a statement that returns the rows it deletes; returns whether there were any.
bool deletes(Statement& deletion) {
  bool any = false;
  while (next(deletion)) any = true;
  return any;
}

}  // namespace

void insertIgnored(Database& database, const IgnoredMessage& message) {
  Statement insertion(database,
                      "INSERT INTO ignored (user, key, date, reason, text) VALUES (?, ?, ?, ?, ?)");
  const std::string date = message.date.text();
  insertion.bind(message.userId).bind(message.key).bind(date);
  run(insertion.bind(reasonText(message.reason)).bind(message.text));
}

std::vector<IgnoredMessage> storedIgnored(Database& database, const money::Day& first) {
  const std::string sql =
      std::string("SELECT ") + messageColumns +
      " FROM ignored WHERE taken_by IS NULL AND date >= ? ORDER BY date DESC, number DESC";
  Statement query(database, sql);
  const std::string since = first.text();
  query.bind(since);
  std::vector<IgnoredMessage> found;
  std::string impossible;
  while (next(query)) {
    auto message = messageOf(query);
    if (!message) {
      impossible += (impossible.empty() ? "" : ", ") + std::to_string(query.integer(0));
      continue;
    }
    found.push_back(*std::move(message));
  }
  if (!impossible.empty()) {
    database.noteDamage("the values of these ignored messages cannot be: " + impossible + "; " +
                        bookCommand("forget-texts") + " removes them");
  }
  return found;
}

std::optional<IgnoredMessage> storedIgnored(Database& database, std::int64_t number,
                                            const money::Day& first) {
  const std::string sql = std::string("SELECT ") + messageColumns +
                          " FROM ignored WHERE number = ? AND taken_by IS NULL AND date >= ?";
  Statement query(database, sql);
  const std::string since = first.text();
  if (!next(query.bind(number).bind(since))) return std::nullopt;
  return messageOf(query);
}

std::int64_t ignoredCount(Database& database, const money::Day& first) {
  Statement query(database, "SELECT count(*) FROM ignored WHERE taken_by IS NULL AND date >= ?");
  const std::string since = first.text();
  return next(query.bind(since)) ? query.integer(0) : 0;
}

bool takeIgnored(Database& database, std::int64_t number, std::int64_t command) {
  Statement update(database, R"(
    UPDATE ignored SET taken_by = ? WHERE number = ? AND taken_by IS NULL RETURNING number)");
  if (!next(update.bind(command).bind(number))) return false;
  run(update);
  return true;
}

void deleteTaken(Database& database, const std::string& userId, const std::string& key) {
  Statement deletion(database,
                     "DELETE FROM ignored WHERE taken_by IS NOT NULL AND user = ? AND key = ?");
  run(deletion.bind(userId).bind(key));
}

bool deleteIgnored(Database& database, std::int64_t number) {
  Statement deletion(database, "DELETE FROM ignored WHERE number = ? RETURNING number");
  return deletes(deletion.bind(number));
}

bool deleteIgnoredBefore(Database& database, const money::Day& first) {
  Statement deletion(database, "DELETE FROM ignored WHERE date < ? RETURNING number");
  const std::string since = first.text();
  return deletes(deletion.bind(since));
}

bool deleteSurplusIgnored(Database& database) {
  Statement counting(database, "SELECT count(*) FROM ignored");
  if (!next(counting) || counting.integer(0) <= mostKept) return false;
  Statement deletion(database, R"(
    DELETE FROM ignored WHERE number NOT IN
      (SELECT number FROM ignored ORDER BY number DESC LIMIT ?) RETURNING number)");
  return deletes(deletion.bind(keptOfMore));
}

bool deleteAllIgnored(Database& database) {
  Statement deletion(database, "DELETE FROM ignored RETURNING number");
  return deletes(deletion);
}

bool hasIgnored(Database& database) {
  Statement query(database, "SELECT 1 FROM ignored LIMIT 1");
  return next(query);
}

}  // namespace kivo::book
