#include "app/add_page.h"

#include <memory>
#include <optional>
#include <string>

#include "app/app_window.h"
#include "app/entry_fields.h"
#include "app/intents_call.h"
#include "app/widgets.h"
#include "book/account.h"
#include "book/current_day.h"
#include "platform/linux/foundation/failure.h"
#include "recording/hand_entry.h"
#include "recording/rereading.h"

namespace kivo::app {

using linux_platform::Failure;

namespace {

constexpr int gap = 18;

class AddPage : public std::enable_shared_from_this<AddPage> {
 public:
  explicit AddPage(AppWindow& window)
      : window_(window), box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap)) {
    withMargins(box_, 12);
  }

  void open() {
    std::vector<std::string> categories;
    window_.read([&](const book::Book& book) { categories = book.categories(); });
    fields_.emplace("Payment", window_.book().currency(), categories);
    fields_->setDay(book::currentDay());
    gtk_box_append(GTK_BOX(box_), fields_->group());
    GtkWidget* add = textButton("Add", [this] { this->add(); });
    gtk_widget_add_css_class(add, "suggested-action");
    window_.push("Add a Payment", scrolledColumn(box_), add, [page = shared_from_this()] {});
  }

 private:
  // What the extension can be told, it performs: a payment of today without a category.
  void add() {
    const auto name = fields_->name();
    const auto day = name ? fields_->day() : std::nullopt;
    const auto sum = day ? fields_->sum() : std::nullopt;
    if (!sum) return;
    const bool isPlain = fields_->category().empty() && *day == book::currentDay() &&
                         fields_->kind() == money::Kind::expense &&
                         sum->currency == window_.book().currency();
    if (isPlain) {
      performAddExpense(window_, *sum, *name);
    } else if (!addByHand({.userId = window_.book().userId(),
                           .date = *day,
                           .kind = fields_->kind(),
                           .amount = *sum,
                           .payee = *name})) {
      return;
    }
    window_.pop();
  }

  bool addByHand(recording::HandEntry payment) {
    book::EntryChange stated{.kind = payment.kind};
    if (const std::string category = fields_->category(); !category.empty()) {
      stated.category = category;
    }
    std::string words = "add --amount " + amountText(payment.amount) + " --payee " +
                        book::commandWord(payment.payee) + " --date " + payment.date.text() +
                        " --kind " + kindText(payment.kind) + " --currency " +
                        payment.amount.currency.text();
    if (stated.category) words += " --category " + book::commandWord(*stated.category);
    const auto number = window_.change(words, "Added", [&](book::Book& book) {
      const bool isOwn = payment.kind == money::Kind::transfer;
      if (!isOwn && book.keepsCash()) payment.account = book::cashAccount;
      const auto id = recording::addByHand(book, payment).id;
      if (!recording::acceptAs(book, id, stated, window_.book().currency())) {
        throw Failure("its sum cannot be booked");
      }
    });
    return number.has_value();
  }

  AppWindow& window_;
  GtkWidget* box_;
  std::optional<EntryFields> fields_;
};

}  // namespace

void openAddPage(AppWindow& window) { std::make_shared<AddPage>(window)->open(); }

}  // namespace kivo::app
