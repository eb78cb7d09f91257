#include "app/ignored_page.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/app_window.h"
#include "app/entry_fields.h"
#include "app/teach_page.h"
#include "app/widgets.h"
#include "platform/linux/foundation/failure.h"
#include "recording/ignored_booking.h"
#include "recording/rereading.h"
#include "recording/template_file.h"

namespace kivo::app {

using book::IgnoredMessage;
using linux_platform::Failure;
using recording::StatedParts;
using recording::StatedReading;

namespace {

constexpr int gap = 18;

class IgnoredPage : public std::enable_shared_from_this<IgnoredPage> {
 public:
  IgnoredPage(AppWindow& window, IgnoredMessage message)
      : window_(window),
        message_(std::move(message)),
        box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap)) {
    withMargins(box_, 12);
  }

  void open() {
    GtkWidget* group = rowGroup("Message");
    GtkWidget* text = textLabel(message_.text);
    gtk_label_set_selectable(GTK_LABEL(text), TRUE);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), text);
    gtk_box_append(GTK_BOX(box_), group);
    addFields();
    GtkWidget* book = textButton("Book", [this] { this->book(); });
    gtk_widget_add_css_class(book, "suggested-action");
    window_.push("Not Booked", scrolledColumn(box_), book, [page = shared_from_this()] {});
  }

 private:
  void addFields() {
    std::vector<std::string> categories;
    book::LedgerEntry proposed;
    proposed.date = message_.date;
    window_.read([&](const book::Book& book) {
      categories = book.categories();
      const auto reading = read(book, {}).message.reading;
      proposed.kind = reading.kind;
      proposed.amount = reading.amount;
      proposed.description = reading.payee;
      proposed.category = reading.category;
    });
    currency_ = proposed.amount ? proposed.amount->currency : window_.book().currency();
    fields_.emplace("It is a payment after all", currency_, categories);
    fields_->set(proposed);
    gtk_box_append(GTK_BOX(box_), fields_->group());
    gtk_box_append(GTK_BOX(box_), textButton("Teach", [this] {
                     openTeachPageOfIgnored(window_, message_.number);
                   }));
  }

  [[nodiscard]] StatedReading read(const book::Book& book, const StatedParts& parts) const {
    return recording::statedReading(book, message_, parts, recording::TemplateFile::reader(),
                                    window_.book().currency());
  }

  void book() {
    const auto name = fields_->name();
    const auto day = name ? fields_->day() : std::nullopt;
    const auto sum = day ? fields_->sum() : std::nullopt;
    if (!sum) return;
    const StatedParts parts{.kind = fields_->kind(), .amount = sum, .payee = name};
    book::EntryChange change{.kind = parts.kind};
    if (*day != message_.date) change.date = day;
    if (const std::string category = fields_->category(); !category.empty()) {
      change.category = category;
    }
    auto* window = &window_;
    const auto number = window_.change(words(parts, change), "Booked", [&](book::Book& book) {
      const auto reading = read(book, parts);
      const auto entry = recording::addIgnored(book, message_.number, reading.message);
      if (!entry) throw Failure("it was booked or removed meanwhile");
      if (!recording::acceptAs(book, entry->id, change, window_.book().currency())) {
        throw Failure("its sum cannot be converted at its rate");
      }
    });
    if (number) window->pop();
  }

  [[nodiscard]] std::string words(const StatedParts& parts, const book::EntryChange& change) const {
    std::string words = "book " + std::to_string(message_.number) + " --kind " +
                        kindText(*parts.kind) + " --amount " + amountText(*parts.amount) +
                        " --currency " + parts.amount->currency.text() + " --payee " +
                        book::commandWord(*parts.payee);
    if (change.category) words += " --category " + book::commandWord(*change.category);
    return words;
  }

  AppWindow& window_;
  IgnoredMessage message_;
  money::CurrencyCode currency_;
  GtkWidget* box_;
  std::optional<EntryFields> fields_;
};

}  // namespace

void openIgnoredPage(AppWindow& window, std::int64_t number) {
  std::optional<IgnoredMessage> message;
  if (!window.read([&](const book::Book& book) { message = book.ignored(number); })) return;
  if (!message) return window.tell("This message is not kept any more");
  std::make_shared<IgnoredPage>(window, *std::move(message))->open();
}

}  // namespace kivo::app
