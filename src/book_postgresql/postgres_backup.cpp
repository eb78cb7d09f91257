#include "book_postgresql/postgres_backup.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "book/book_file.h"
#include "book/sqlite_database.h"
#include "book_postgresql/postgres_tables.h"
#include "platform/linux/store/database_copy.h"

namespace kivo::book_postgresql {

using book::Statement;

namespace {

// The tables by which commands are taken back are in no backup.
bool isOfHistory(const TableForm& table) {
  const std::string_view name = table.name;
  return name == "commands" || name.starts_with("past_");
}

// Copies the rows of a table. Both databases have the same columns.
void copyRows(const TableForm& table, book::Database& from, book::Database& to) {
  const std::string columns = columnNames(table);
  const std::vector<bool> numbers = numberColumns(table);
  std::string parameters;
  for (std::size_t at = 0; at < numbers.size(); ++at) parameters += at == 0 ? "?" : ", ?";
  Statement query(from, "SELECT " + columns + " FROM " + table.name);
  Statement insertion(to, std::string("INSERT INTO ") + table.name + " (" + columns + ") VALUES (" +
                              parameters + ")");
  while (next(query)) {
    std::vector<std::string> texts(numbers.size());  // outlive the insertion
    for (std::size_t at = 0; at < numbers.size(); ++at) {
      const int column = static_cast<int>(at);
      if (query.isNull(column)) {
        insertion.bindIfPresent(std::nullopt);
      } else if (numbers[at]) {
        insertion.bind(query.integer(column));
      } else {
        insertion.bind(texts[at] = query.text(column));
      }
    }
    run(insertion);
    insertion.reset();
  }
}

// The last number that was given in a table.
std::int64_t lastNumber(book::Database& database, const std::string& sql, const char* table) {
  Statement query(database, sql);
  return next(query.bind(std::string_view(table))) ? query.integer(0) : 0;
}

}  // namespace

book::HeldPayments writeBackup(book::Database& book, const std::filesystem::path& path,
                               const book::BackedUpSettings& settings, const std::string& program) {
  const linux_platform::Database copy = linux_platform::openInMemory({});
  if (copy == nullptr) throw linux_platform::Failure("there is not enough memory for the backup");
  book::makeBookOf(copy.get(), 0);
  book::SqliteTables tables(copy.get());
  for (const TableForm& table : tableForms()) {
    if (isOfHistory(table)) continue;
    copyRows(table, book, tables);
    if (std::string_view(table.numbered).empty()) continue;
    const std::int64_t last = lastNumber(
        book, "SELECT last FROM kivo.numbers WHERE book = kivo.used_book() AND table_name = ?",
        table.name);
    Statement removal(tables, "DELETE FROM sqlite_sequence WHERE name = ?");
    run(removal.bind(std::string_view(table.name)));
    Statement insertion(tables, "INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)");
    run(insertion.bind(std::string_view(table.name)).bind(last));
  }
  return book::writeBackup(copy.get(), path, settings, program);
}

void replaceRows(book::Database& book, const book::Backup& backup) {
  book::SqliteTables tables(backup.database());
  for (const TableForm& table : tableForms()) {
    Statement removal(book, std::string("DELETE FROM ") + table.name);
    run(removal);
    if (isOfHistory(table)) continue;
    copyRows(table, tables, book);
    if (std::string_view(table.numbered).empty()) continue;
    const std::int64_t last =
        lastNumber(tables, "SELECT seq FROM sqlite_sequence WHERE name = ?", table.name);
    Statement update(book, R"(
      UPDATE kivo.numbers SET last = CASE WHEN last < ?1 THEN ?1 ELSE last END
        WHERE book = kivo.used_book() AND table_name = ?2)");
    run(update.bind(last).bind(std::string_view(table.name)));
  }
  Statement taken(book, "DELETE FROM ignored WHERE taken_by IS NOT NULL");
  run(taken);
}

}  // namespace kivo::book_postgresql
