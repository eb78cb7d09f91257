#include "book/sqlite_database.h"

#include <utility>

#include "book/book_damage.h"
#include "book/book_file.h"
#include "platform/linux/store/replaced_text.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::book {
namespace {

class SqliteStatement : public PreparedStatement {
 public:
  SqliteStatement(sqlite3* database, const std::string& sql) : statement_(database, sql.c_str()) {}

  void bind(std::string_view text) override { statement_.bind(text); }
  void bind(std::optional<std::int64_t> number) override { statement_.bindIfPresent(number); }
  bool next() override {
    if (statement_.step()) return true;
    require(statement_.code());
    return false;
  }
  void reset() override { statement_.reset(); }
  [[nodiscard]] bool isNull(int column) const override { return statement_.isNull(column); }
  [[nodiscard]] std::int64_t integer(int column) const override {
    return statement_.integer(column);
  }
  [[nodiscard]] std::string text(int column) const override { return statement_.text(column); }

 private:
  linux_platform::Statement statement_;
};

// The file of the book and its tables.
class SqliteBook : public SqliteTables {
 public:
  explicit SqliteBook(linux_platform::Database owner)
      : SqliteTables(owner.get()), owner_(std::move(owner)) {}

 private:
  linux_platform::Database owner_;
};

}  // namespace

std::unique_ptr<PreparedStatement> SqliteTables::prepare(const std::string& sql) {
  return std::make_unique<SqliteStatement>(database_, sql);
}

std::string SqliteTables::dayBeside(const std::string& column, int days) const {
  return "date(" + column + ", '" + std::to_string(days) + " days')";
}

void SqliteTables::inTransaction(const std::function<void()>& steps) {
  const linux_platform::StatementCache cache(database_);
  WriteTransaction transaction(database_);
  steps();
  transaction.commit();
}

void SqliteTables::inSnapshot(const std::function<void()>& reads) {
  const linux_platform::StatementCache cache(database_);
  const linux_platform::Transaction transaction(database_, "BEGIN");
  require(transaction.code());
  reads();
}

void SqliteTables::oweErasure() { linux_platform::oweErasure(database_); }

void SqliteTables::eraseDeletedTexts() { linux_platform::eraseReplacedText(database_); }

void SqliteTables::noteDamage(const std::string& what) { book::noteDamage(database_, what); }

bool SqliteTables::isWhole() {
  if (wasChecked_ && !isDamageNoted(database_)) return true;
  wasChecked_ = checkWhole(database_);
  return wasChecked_;
}

void SqliteTables::tell(const BookFailure& failure) { tellFailure(database_, failure); }

std::filesystem::path SqliteTables::path() const { return linux_platform::fileOf(database_); }

std::int64_t SqliteTables::changesByOthers() {
  SqliteStatement query(database_, "PRAGMA data_version");
  return query.next() ? query.integer(0) : 0;
}

HeldPayments SqliteTables::backUp(const std::filesystem::path& path,
                                  const BackedUpSettings& settings, const std::string& program) {
  return writeBackup(database_, path, settings, program);
}

void SqliteTables::withReplacement(
    const Backup& backup, const std::function<void(const std::function<void()>& replace)>& use) {
  const AttachedBackup attached(database_, backup);
  use([&attached] { attached.replaceBook(); });
}

std::unique_ptr<Database> openSqliteBook() { return std::make_unique<SqliteBook>(openBookFile()); }

}  // namespace kivo::book
