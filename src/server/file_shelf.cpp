#include "server/file_shelf.h"

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "book/sqlite_database.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/store/opening_failure.h"
#include "platform/linux/store/sqlite_database.h"
#include "recording/book_currency.h"
#include "server/new_book.h"

namespace kivo::server {

using linux_platform::Failure;

namespace {

// A person's name is the user of the messages that the person's devices send, so it is unique on
// the server.
constexpr std::array versions = {linux_platform::DatabaseVersion{R"(
CREATE TABLE books (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE
) STRICT;
CREATE TABLE people (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
  book INTEGER NOT NULL REFERENCES books (number)
) STRICT;
CREATE TABLE devices (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL COLLATE NOCASE,
  person INTEGER NOT NULL REFERENCES people (number), added TEXT NOT NULL,
  secret_hash TEXT NOT NULL UNIQUE, UNIQUE (person, name)
) STRICT;
CREATE TABLE settings (name TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) STRICT)"}};

constexpr std::int64_t applicationId = 0x4B765376;  // "KvSv" in ASCII

constexpr linux_platform::DatabaseForm form = {"app.kivo.server", "server.sqlite3", applicationId,
                                               versions};

linux_platform::Database openedFile() {
  try {
    return linux_platform::openDatabase(form);
  } catch (const linux_platform::OpeningFailure& failure) {
    throw Failure(std::string("the list of people and devices: ") + failure.what());
  }
}

class FileShelf : public Shelf {
 public:
  FileShelf()
      : file_(openedFile()), books_(linux_platform::fileOf(file_.get()).parent_path() / "books") {}

  std::unique_ptr<book::Database> directory() override {
    return std::make_unique<book::SqliteTables>(file_.get());
  }

  void addBook(std::int64_t number, const money::CurrencyCode& currency) override {
    std::error_code error;
    // Left by a call that ended before its commit.
    std::filesystem::remove_all(folderOf(number), error);
    std::filesystem::create_directories(folderOf(number) / "data", error);
    if (error) throw Failure("the folder of the book cannot be made: " + error.message());
    const linux_platform::FoldersIn folders(folderOf(number));
    makeNewBook(currency);
  }

  void inBook(std::int64_t number, Settings, const std::function<void()>& use) override {
    const linux_platform::FoldersIn folders(folderOf(number));
    use();
  }

  std::optional<money::CurrencyCode> currency(std::int64_t) override {
    return recording::bookCurrency();
  }

 private:
  [[nodiscard]] std::filesystem::path folderOf(std::int64_t book) const {
    return books_ / std::to_string(book);
  }

  linux_platform::Database file_;
  std::filesystem::path books_;
};

}  // namespace

std::unique_ptr<Shelf> openFileShelf() { return std::make_unique<FileShelf>(); }

}  // namespace kivo::server
