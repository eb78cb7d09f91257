#include "book/book_backup.h"

#include <utility>
#include <vector>

#include "book/backup_file.h"
#include "book/book_damage.h"
#include "book/book_file.h"
#include "platform/foundation/date.h"
#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/database_copy.h"
#include "platform/linux/store/private_file.h"

namespace kivo::book {
namespace {

using linux_platform::execute;
using linux_platform::Failure;

// A released form never changes. `templates` and `senders` are the bytes of files.
constexpr const char* backupTable = R"(
CREATE TABLE backup (
  book_version INTEGER NOT NULL, written TEXT NOT NULL, program TEXT NOT NULL,
  currency TEXT NOT NULL, templates TEXT NOT NULL, senders TEXT NOT NULL
) STRICT)";

// Throws for SQLite's result `code` of a step that writes a backup.
void requireWritten(int code) {
  if (linux_platform::isDamage(code)) throw DatabaseFailure(code);
  if (code != 0) throw Failure(linux_platform::errorText(code));
}

HeldPayments paymentsIn(sqlite3* database) {
  linux_platform::Statement query(database, R"(
    SELECT count(*), min(CASE WHEN state <> 'set_aside' THEN date END),
      max(CASE WHEN state <> 'set_aside' THEN date END) FROM transactions)");
  if (!next(query)) return {};
  return {.count = query.integer(0),
          .first = money::Day::fromText(query.text(1)),
          .last = money::Day::fromText(query.text(2))};
}

// Makes a backup of `copy`, a copy of a book.
void addSettings(sqlite3* copy, const BackedUpSettings& settings, const std::string& program) {
  requireWritten(execute(copy, backupTable));
  linux_platform::Statement insertion(copy, "INSERT INTO backup VALUES (?, ?, ?, ?, ?, ?)");
  const std::string written = platform::ISO8601DateFormatter::string(
      std::chrono::floor<std::chrono::seconds>(platform::Date::now()));
  insertion.bind(bookVersion()).bind(written).bind(program);
  insertion.bind(settings.currency).bind(settings.templates).bind(settings.senders).run();
  requireWritten(insertion.code());
  const std::string marks = "PRAGMA application_id = " + std::to_string(backupApplicationId) +
                            "; PRAGMA user_version = " + std::to_string(backupVersion);
  requireWritten(execute(copy, marks.c_str()));
}

// Makes a backup of the copy of a book in `path`.
HeldPayments completed(const std::filesystem::path& path, const BackedUpSettings& settings,
                       const std::string& program) {
  const linux_platform::Database copy = linux_platform::openUnshared(path);
  if (copy == nullptr) throw Failure("it cannot be opened");
  if (const auto fault = faultInCopy(copy.get())) {
    throw BookFailure(*fault, BookFailure::Cause::damagedFile);
  }
  const HeldPayments held = paymentsIn(copy.get());
  addSettings(copy.get(), settings, program);
  return held;
}

std::vector<std::string> namesFrom(sqlite3* database, const std::string& sql) {
  linux_platform::Statement query(database, sql.c_str());
  std::vector<std::string> names;
  while (next(query)) names.push_back(query.text(0));
  return names;
}

// The tables by which commands are taken back.
bool isOfHistory(const std::string& table) {
  return table == "commands" || table.starts_with("past_");
}

std::string columnsOf(sqlite3* database, const std::string& table) {
  std::string columns;
  for (const std::string& name :
       namesFrom(database, "SELECT name FROM pragma_table_info('" + table + "', 'main')")) {
    columns += (columns.empty() ? "" : ", ") + name;
  }
  return columns;
}

// The settings in the backup `database` from the file `name`, which is a book of the current
// version afterwards. Throws BookFailure when it is damaged.
BackedUpSettings settingsTakenFrom(sqlite3* database, const std::string& name) {
  linux_platform::Statement query(database,
                                  "SELECT book_version, currency, templates, senders FROM backup");
  if (!next(query)) throw BookFailure("its settings are missing");
  const std::int64_t version = query.integer(0);
  BackedUpSettings settings{
      .currency = query.text(1), .templates = query.text(2), .senders = query.text(3)};
  query.reset();
  if (version > bookVersion()) {
    throw Failure(name + " was written by a newer version of Kivo; update Kivo");
  }
  require(execute(database, "DROP TABLE backup"));
  makeBookOf(database, version);
  if (const auto fault = faultInCopy(database)) throw BookFailure(*fault);
  return settings;
}

}  // namespace

Backup::Backup(linux_platform::Database database, BackedUpSettings settings)
    : database_(std::move(database)), settings_(std::move(settings)) {}

Backup Backup::read(const std::filesystem::path& path) {
  linux_platform::Database database = linux_platform::openInMemory(backupBytes(path));
  if (database == nullptr) throw Failure("there is not enough memory for the backup");
  const std::string name = '"' + linux_platform::escapedControls(path.string()) + '"';
  try {
    BackedUpSettings settings = settingsTakenFrom(database.get(), name);
    return {std::move(database), std::move(settings)};
  } catch (const BookFailure& failure) {
    throw Failure(name + " is damaged: " + failure.what() + "; take another backup");
  }
}

HeldPayments Backup::payments() const { return paymentsIn(database_.get()); }

HeldPayments writeBackup(sqlite3* database, const std::filesystem::path& path,
                         const BackedUpSettings& settings, const std::string& program) {
  requireReplaceable(path);
  HeldPayments held;
  linux_platform::writePrivateFile(path, [&](const std::filesystem::path& fresh) {
    requireWritten(linux_platform::copyInto(fresh, database));
    held = completed(fresh, settings, program);
    seal(fresh);
  });
  return held;
}

AttachedBackup::AttachedBackup(sqlite3* database, const Backup& backup) : database_(database) {
  const int code = linux_platform::attachCopy(database, "backup", backup.database());
  if (code == 0) return;
  execute(database, "DETACH backup");
  throw DatabaseFailure(code);
}

AttachedBackup::~AttachedBackup() { execute(database_, "DETACH backup"); }

void AttachedBackup::replaceBook() const {
  for (const std::string& table :
       namesFrom(database_,
                 "SELECT name FROM main.sqlite_schema WHERE type = 'table' AND "
                 "name NOT LIKE 'sqlite%'")) {
    require(execute(database_, ("DELETE FROM main." + table).c_str()));
    if (isOfHistory(table)) continue;
    const std::string columns = columnsOf(database_, table);
    std::string copying = "INSERT INTO main.";
    copying.append(table).append(" (").append(columns).append(") SELECT ").append(columns);
    copying.append(" FROM backup.").append(table);
    require(execute(database_, copying.c_str()));
  }
  require(execute(database_, R"(
    DELETE FROM main.ignored WHERE taken_by IS NOT NULL;
    INSERT INTO main.sqlite_sequence SELECT name, 0 FROM backup.sqlite_sequence
      WHERE name NOT IN (SELECT name FROM main.sqlite_sequence);
    UPDATE main.sqlite_sequence SET seq = max(seq, coalesce(
      (SELECT seq FROM backup.sqlite_sequence AS given WHERE given.name = sqlite_sequence.name), 0)))"));
}

}  // namespace kivo::book
