// The window: its pages, the way between them, and the errors of all of them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <adwaita.h>

#include "app/app_book.h"
#include "app/signals.h"

namespace kivo::app {

class MonthPage;
class PaymentsPage;
class ReviewPage;

/// The window of the app, whose pages read and change the book by it alone. Lives as long as the
/// application, also after the window was closed. Not thread-safe.
class AppWindow {
 public:
  explicit AppWindow(GtkApplication* application);
  ~AppWindow();
  AppWindow(const AppWindow&) = delete;
  AppWindow& operator=(const AppWindow&) = delete;

  /// Shows the window in front of others.
  void present();
  /// Shows what a link leads to: the page of its payment, or else the page of the reviews when
  /// there are any, or else the month.
  void open(const std::string& link);

  /// The open book; there is one while pages exist.
  [[nodiscard]] AppBook& book() { return *book_; }
  /// Calls `reads` at one moment of the book. When the book cannot be read, shows why in the place
  /// of all pages, from the next turn of the main loop on, and returns false.
  bool read(const std::function<void(const book::Book&)>& reads);
  /// Runs `steps` as the command `words`, then shows `done`, which `steps` may have changed, with a
  /// button that takes it back, and has all pages read again. Returns the command's number. When
  /// nothing could be changed, says why, and returns nothing.
  std::optional<std::int64_t> change(const std::string& words, const std::string& done,
                                     const std::function<void(book::Book&)>& steps);
  /// Does so for a command that added a template, which it removes again when nothing is changed.
  std::optional<std::int64_t> changeAs(const book::UserCommand& command, const std::string& done,
                                       const std::function<void(book::Book&)>& steps);
  /// Runs `steps` as a further part of that command, shows `done`, and has all pages read again.
  void changeMore(const std::string& words, std::int64_t number, const std::string& done,
                  const std::function<void(book::Book&)>& steps);
  /// Takes back the command `number` and all later ones, and says so; or why not.
  void undoSince(std::int64_t number);
  /// Shows `text` for some seconds.
  void tell(const std::string& text);
  /// Says that something was not done, and why, until the person has read it.
  void tellFailure(const char* heading, const std::string& why);
  /// Asks a question that `answer` goes on from when it is answered with yes.
  void ask(const std::string& question, const std::string& detail, const char* yes,
           std::function<void()> answer);

  /// Shows the payment `id` on a page of its own.
  void openPayment(std::int64_t id);
  /// Shows the payments that match `filter`.
  void showPayments(const book::EntryFilter& filter);
  /// Shows the page of the reviews.
  void showReview();
  /// Shows `content` on a page of its own called `title`, with `action`, which may be null, in its
  /// header. `refresh`, if any, is called when the book changes, and is destroyed after the page.
  void push(const std::string& title, GtkWidget* content, GtkWidget* action,
            std::function<void()> refresh = {});
  /// Goes back to the page before.
  void pop();
  /// Goes back to the main pages.
  void popAll();

 private:
  struct Pushed {
    GtkWidget* page;
    std::function<void()> refresh;
  };

  void openBook();
  void buildPages();
  GtkWidget* mainPage();
  void addPage(GtkWidget* page, const char* name, const char* title, const char* icon);
  void bindKeys(GtkApplication* application);
  void refresh();
  void showFailure(const std::string& why);
  void dropPages();
  void dropLeftPages();
  void tellDone(const std::string& done, std::optional<std::int64_t> number);
  void undo(std::int64_t number);

  GtkWidget* window_;
  GtkWidget* toasts_ = nullptr;
  /// The last one, while it is shown.
  AdwToast* toast_ = nullptr;
  GtkWidget* leaflet_ = nullptr;
  GtkWidget* stack_ = nullptr;
  std::unique_ptr<AppBook> book_;
  std::unique_ptr<MonthPage> month_;
  std::unique_ptr<PaymentsPage> payments_;
  std::unique_ptr<ReviewPage> review_;
  GtkWidget* main_ = nullptr;
  std::vector<Pushed> pushed_;
  std::vector<GtkWidget*> left_;
  Later failing_;
  Later leaving_;
};

}  // namespace kivo::app
