#include "app/app_book.h"

#include <chrono>
#include <utility>
#include <vector>

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
  GFile* folder = g_file_new_for_path(book_.path().parent_path().c_str());
  monitor_ = g_file_monitor_directory(folder, G_FILE_MONITOR_NONE, nullptr, nullptr);
  g_object_unref(folder);
  if (monitor_ == nullptr) return;  // too many watches: what others change is seen at the next read
  g_file_monitor_set_rate_limit(monitor_, static_cast<gint>(pause.count()));
  onSignal(monitor_, "changed", [this] {
    if (!looking_.isPending()) looking_.call([this] { look(); }, pause);
  });
}

AppBook::~AppBook() {
  if (monitor_ == nullptr) return;
  g_file_monitor_cancel(monitor_);
  g_object_unref(monitor_);
}

void AppBook::look() {
  try {
    const std::int64_t now = book_.changesByOthers();
    if (std::exchange(seen_, now) == now) return;
  } catch (const book::BookFailure&) {  // the next read says so
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
