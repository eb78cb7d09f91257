#include "server/postgres_shelf.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include <libpq-fe.h>

#include "book/book.h"
#include "book_postgresql/postgres_book.h"
#include "book_postgresql/postgres_tables.h"
#include "ledger/kept_settings.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/terminal/command_failure.h"
#include "recording/book_currency.h"

namespace kivo::server {

using book::BackedUpSettings;
using book_postgresql::PostgresConnection;
using linux_platform::Failure;

namespace {

bool holdsPassword(const std::string& url) {
  const std::size_t begin = url.find("://");
  const std::size_t at = url.find('@');
  const bool isInUser = begin != std::string::npos && at != std::string::npos &&
                        url.substr(begin + 3, at - begin - 3).find(':') != std::string::npos;
  return isInUser || url.find("password=") != std::string::npos;
}

// A folder of this process, which goes with it.
class ProcessFolder {
 public:
  ProcessFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kivo-server-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw Failure("no temporary folder can be made");
    path_ = name;
  }
  ~ProcessFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ProcessFolder(const ProcessFolder&) = delete;
  ProcessFolder& operator=(const ProcessFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The settings of each book are rows of the database. While a book is used they lie as files in a
// folder of the process, where the ledger's code looks for them.
class PostgresShelf : public Shelf {
 public:
  explicit PostgresShelf(const std::string& url)
      : connection_(std::make_shared<PostgresConnection>(url)) {
    book_postgresql::createTables(*connection_);
  }

  std::unique_ptr<book::Database> directory() override {
    return book_postgresql::openDirectory(connection_);
  }

  void addBook(std::int64_t number, const money::CurrencyCode& currency) override {
    book_postgresql::addBookTables(*connection_, number);
    connection_->run("INSERT INTO kivo.book_settings (book, currency) VALUES ($1, $2)",
                     {{std::to_string(number), true}, {currency.text(), false}});
  }

  void inBook(std::int64_t number, Settings settings, const std::function<void()>& use) override {
    const linux_platform::FoldersIn folders(folderOf(number));
    const book::BooksFrom books(
        [this, number] { return book_postgresql::openBook(connection_, number); });
    layOut(number);
    if (settings == Settings::stay) return use();
    try {
      use();
    } catch (...) {  // a command may change a setting and fail after that
      takeUp(number);
      throw;
    }
    takeUp(number);
  }

  std::optional<money::CurrencyCode> currency(std::int64_t number) override {
    const auto kept = money::CurrencyCode::fromText(laidOut_.at(number).currency);
    return kept ? kept : recording::bookCurrency();
  }

 private:
  [[nodiscard]] std::filesystem::path folderOf(std::int64_t number) const {
    return folder_.path() / std::to_string(number);
  }

  void layOut(std::int64_t number) {
    const book_postgresql::Result row = connection_->run(
        "SELECT currency, templates, senders FROM kivo.book_settings WHERE book = $1",
        {{std::to_string(number), true}});
    if (PQntuples(row.get()) == 0) throw Failure("the settings of the book are missing");
    const auto text = [&row](int column) { return std::string(valueOf(row, 0, column)); };
    const BackedUpSettings settings{.currency = text(0), .templates = text(1), .senders = text(2)};
    const auto known = laidOut_.find(number);
    if (known != laidOut_.end() && known->second == settings) return;
    std::error_code error;
    std::filesystem::create_directories(folderOf(number) / "data", error);
    std::filesystem::create_directories(folderOf(number) / "config", error);
    ledger::KeptSettings::write(settings);
    laidOut_.insert_or_assign(number, settings);
  }

  void takeUp(std::int64_t number) {
    const BackedUpSettings settings = ledger::KeptSettings::read();
    if (laidOut_.at(number) == settings) return;
    connection_->run(
        "UPDATE kivo.book_settings SET currency = $2, templates = $3, senders = $4 WHERE book = $1",
        {{std::to_string(number), true},
         {settings.currency, false},
         {settings.templates, false},
         {settings.senders, false}});
    laidOut_.insert_or_assign(number, settings);
  }

  std::shared_ptr<PostgresConnection> connection_;
  ProcessFolder folder_;
  // The settings that lie in the folders.
  std::map<std::int64_t, BackedUpSettings> laidOut_;
};

}  // namespace

std::unique_ptr<Shelf> openPostgresShelf(const std::string& url) {
  if (holdsPassword(url)) {
    throw linux_platform::BadUsage(
        "a password may not stand in --database; put it into a file that PGPASSFILE names");
  }
  return std::make_unique<PostgresShelf>(url);
}

}  // namespace kivo::server
