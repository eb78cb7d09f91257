#include "app/app_book.h"

#include <chrono>
#include <utility>
#include <vector>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/failure.h"
#include "recording/book_currency.h"
#include "recording/template_file.h"
#include "store/shared_store.h"

namespace kivo::app {

using book::Book;
using linux_platform::Failure;

namespace {

// An import touches the file many times a second.
constexpr std::chrono::milliseconds pause(200);

SharedStore openedStore() {
  auto store = SharedStore::open(appGroup);
  if (!store) throw Failure("the shared store cannot be opened");
  return *std::move(store);
}

money::CurrencyCode currencyOfBook() {
  const auto currency = recording::bookCurrency();
  if (!currency) throw Failure("the shared store cannot be opened");
  return *currency;
}

}  // namespace

AppBook::AppBook(std::function<void()> followed)
    : book_(Book::open()),
      currency_(currencyOfBook()),
      userId_(openedStore().readNonEmptyText(StoreKeys::userId).value_or("local")),
      followed_(std::move(followed)),
      seen_(book_.changesByOthers()) {
  bookWatch_ = watched(book_.path().parent_path());
  if (const auto data = linux_platform::dataHome()) storeWatch_ = watched(*data / appGroup);
}

AppBook::~AppBook() {
  for (GFileMonitor* const watch : {bookWatch_, storeWatch_}) {
    if (watch == nullptr) continue;
    g_file_monitor_cancel(watch);
    g_object_unref(watch);
  }
}

GFileMonitor* AppBook::watched(const std::filesystem::path& folder) {
  GFile* file = g_file_new_for_path(folder.c_str());
  GFileMonitor* watch = g_file_monitor_directory(file, G_FILE_MONITOR_NONE, nullptr, nullptr);
  g_object_unref(file);
  if (watch == nullptr) return nullptr;
  g_file_monitor_set_rate_limit(watch, static_cast<gint>(pause.count()));
  onSignal(watch, "changed", [this] {
    if (!looking_.isPending()) looking_.call([this] { look(); }, pause);
  });
  return watch;
}

void AppBook::look() {
  try {
    const std::int64_t now = book_.changesByOthers();
    const auto currency = currencyOfBook();
    const bool isSame = now == seen_ && currency == currency_;
    seen_ = now;
    currency_ = currency;
    if (isSame) return;
  } catch (const Failure&) {  // the next read says so
  }
  followed_();
}

std::optional<std::int64_t> AppBook::change(book::UserCommand command,
                                            const std::function<void(Book&)>& steps) {
  book_.asCommand(command, [&] { steps(book_); });
  return command.number;
}

void AppBook::changeMore(const std::string& words, std::int64_t number,
                         const std::function<void(Book&)>& steps) {
  book::UserCommand command{.words = words, .number = number};
  book_.asCommand(command, [&] { steps(book_); });
}

std::int64_t AppBook::undoSince(std::int64_t number) {
  std::int64_t undone = 0;
  book_.inOneStep([&] {
    std::int64_t count = 0;
    std::int64_t place = 0;
    for (const auto& command : book_.history()) {
      ++place;
      if (command.number == number) count = place;
    }
    undone = static_cast<std::int64_t>(takeBack(count).size());
  });
  return undone;
}

bool AppBook::undo(std::int64_t number) {
  bool undone = false;
  book_.inOneStep([&] {
    const auto commands = book_.history();
    if (commands.empty() || commands.front().number != number) return;
    undone = !takeBack(1).empty();
  });
  return undone;
}

// The last `count` commands, with the templates that they added.
std::vector<book::PastCommand> AppBook::takeBack(std::int64_t count) {
  auto undone = book_.undo(count);
  for (const auto& command : undone) {
    if (!command.addedTemplate.empty()) recording::TemplateFile::remove(command.addedTemplate);
  }
  return undone;
}

}  // namespace kivo::app
