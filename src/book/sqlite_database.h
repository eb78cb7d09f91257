// The book in a SQLite file.
#pragma once

#include <memory>

#include "book/database.h"
#include "platform/linux/store/sqlite_database.h"

namespace kivo::book {

/// The tables of an open SQLite database, which its owner closes. Its failures are DatabaseFailure.
class SqliteTables : public Database {
 public:
  explicit SqliteTables(sqlite3* database) : database_(database) {}

  std::unique_ptr<PreparedStatement> prepare(const std::string& sql) override;
  [[nodiscard]] std::string dayBeside(const std::string& column, int days) const override;
  void inTransaction(const std::function<void()>& steps) override;
  void inSnapshot(const std::function<void()>& reads) override;
  void oweErasure() override;
  void eraseDeletedTexts() override;
  void noteDamage(const std::string& what) override;
  bool isWhole() override;
  void tell(const BookFailure& failure) override;
  [[nodiscard]] std::filesystem::path path() const override;
  std::int64_t changesByOthers() override;
  HeldPayments backUp(const std::filesystem::path& path, const BackedUpSettings& settings,
                      const std::string& program) override;
  void withReplacement(
      const Backup& backup,
      const std::function<void(const std::function<void()>& replace)>& use) override;

 private:
  sqlite3* database_;
  bool wasChecked_ = false;
};

/// Opens the file of the book, as `openBookFile` does.
std::unique_ptr<Database> openSqliteBook();

}  // namespace kivo::book
