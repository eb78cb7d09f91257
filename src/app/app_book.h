// The book as the window has it open: reads, changes with their way back, and what others change.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gio/gio.h>

#include "app/signals.h"
#include "book/book.h"
#include "money/currency_code.h"

namespace kivo::app {

/// An open book, with the currency and the person of the shared store. Not thread-safe.
class AppBook {
 public:
  /// Opens the book, and creates it when it is missing. Calls `followed` from the main loop after
  /// others, such as the service, changed the book or its currency. Throws linux_platform::Failure,
  /// with the reason for the user, when the book or the shared store cannot be opened.
  explicit AppBook(std::function<void()> followed);
  ~AppBook();
  AppBook(const AppBook&) = delete;
  AppBook& operator=(const AppBook&) = delete;

  [[nodiscard]] const book::Book& book() const { return book_; }
  [[nodiscard]] const money::CurrencyCode& currency() const { return currency_; }
  [[nodiscard]] const std::string& userId() const { return userId_; }

  /// Runs `steps` as a new `command` in one step. Returns its number for `undo`; absent when it
  /// changed nothing. Throws BookFailure, and what `steps` throw, when nothing was changed.
  std::optional<std::int64_t> change(book::UserCommand command,
                                     const std::function<void(book::Book&)>& steps);
  /// Runs `steps` as a further step of the command `words` that `change` gave the number `number`.
  void changeMore(const std::string& words, std::int64_t number,
                  const std::function<void(book::Book&)>& steps);
  /// Takes the command `number` back, with the template that it added; returns false, and changes
  /// nothing, when it is not the last one any more. Throws BookFailure.
  bool undo(std::int64_t number);
  /// Takes back the command `number` and all later ones, with the templates that they added, and
  /// returns their number; 0 when the history has it no more. Throws Failure.
  std::int64_t undoSince(std::int64_t number);

 private:
  /// Returns a watch of `folder` that has `look` called; null when there is none.
  GFileMonitor* watched(const std::filesystem::path& folder);
  void look();
  std::vector<book::PastCommand> takeBack(std::int64_t count);

  book::Book book_;
  money::CurrencyCode currency_;
  std::string userId_;
  std::function<void()> followed_;
  std::int64_t seen_ = 0;
  /// Null where there are too many watches: what others change is seen at the next read.
  GFileMonitor* bookWatch_ = nullptr;
  GFileMonitor* storeWatch_ = nullptr;
  Later looking_;
};

}  // namespace kivo::app
