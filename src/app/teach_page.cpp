#include "app/teach_page.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/app_window.h"
#include "app/signals.h"
#include "app/stated_texts.h"
#include "app/sum_texts.h"
#include "app/widgets.h"
#include "platform/linux/foundation/failure.h"
#include "recognition/templates/message_text.h"
#include "recognition/templates/teaching.h"
#include "recording/ignored_booking.h"
#include "recording/proposed_parts.h"
#include "recording/rereading.h"
#include "recording/taught_entries.h"
#include "recording/template_file.h"

namespace kivo::app {

using linux_platform::Failure;
using recognition::CannotTeach;
using recognition::MessageTemplate;
using recognition::TaughtParts;

namespace {

constexpr int gap = 18;

constexpr std::array kinds = {std::optional(money::Kind::expense),
                              std::optional(money::Kind::income),
                              std::optional(money::Kind::transfer), std::optional<money::Kind>()};

// The message that is shown: that of an entry, or an ignored one.
struct Shown {
  std::optional<book::LedgerEntry> entry = {};
  std::optional<book::IgnoredMessage> ignored = {};

  [[nodiscard]] std::string text() const { return entry ? *entry->text : ignored->text; }
  [[nodiscard]] std::string name() const {
    return entry ? std::to_string(entry->id) : "ignored:" + std::to_string(ignored->number);
  }
};

class TeachPage : public std::enable_shared_from_this<TeachPage> {
 public:
  TeachPage(AppWindow& window, Shown shown)
      : window_(window),
        shown_(std::move(shown)),
        message_(recognition::partThatCounts(shown_.text())),
        box_(withMargins(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap), 12)) {}

  void open() {
    gtk_box_append(GTK_BOX(box_), messageGroup());
    gtk_box_append(GTK_BOX(box_), partsGroup());
    GtkWidget* save = textButton("Learn", [this] { learn(); });
    gtk_widget_add_css_class(save, "suggested-action");
    window_.push("Teach", scrolledColumn(box_), save, [page = shared_from_this()] {});
  }

 private:
  GtkWidget* messageGroup() {
    text_ = textLabel(message_);
    gtk_label_set_selectable(GTK_LABEL(text_), TRUE);
    GtkWidget* group = rowGroup("Mark a part of the message");
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), text_);
    GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    gtk_widget_set_margin_top(buttons, 12);
    addTaker(buttons, "This Is the Sum", [this] { take(amount_); });
    addTaker(buttons, "This Is the Payee", [this] { take(payee_); });
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), buttons);
    return group;
  }

  // The mark stays when the button is clicked.
  static void addTaker(GtkWidget* buttons, const char* label, std::function<void()> takes) {
    GtkWidget* button = textButton(label, std::move(takes));
    gtk_widget_set_focus_on_click(button, FALSE);
    gtk_box_append(GTK_BOX(buttons), button);
  }

  GtkWidget* partsGroup() {
    const auto proposed =
        recording::proposedParts(message_, shown_.entry, window_.book().currency());
    kind_ = adw_combo_row_new();
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(kind_), "Kind");
    const char* const names[] = {"Expense", "Income", "Transfer between own accounts", "No payment",
                                 nullptr};
    GtkStringList* list = gtk_string_list_new(names);
    adw_combo_row_set_model(ADW_COMBO_ROW(kind_), G_LIST_MODEL(list));
    g_object_unref(list);
    for (guint at = 0; at < kinds.size(); ++at) {
      if (kinds.at(at) == proposed.kind) adw_combo_row_set_selected(ADW_COMBO_ROW(kind_), at);
    }
    amount_ = statedText("Sum, as the message writes it");
    payee_ = statedText("Payee, as the message writes it");
    gtk_editable_set_text(GTK_EDITABLE(amount_), proposed.amount.c_str());
    gtk_editable_set_text(GTK_EDITABLE(payee_), proposed.payee.c_str());
    GtkWidget* group = rowGroup("Messages like it say");
    for (GtkWidget* row : {kind_, amount_, payee_}) {
      adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
    }
    return group;
  }

  // Takes what is marked in the message as the text of `row`.
  void take(GtkWidget* row) {
    int begin = 0;
    int end = 0;
    if (gtk_label_get_selection_bounds(GTK_LABEL(text_), &begin, &end) == FALSE) {
      return window_.tell("Mark it in the message first");
    }
    char* marked = g_utf8_substring(message_.c_str(), begin, end);
    gtk_editable_set_text(GTK_EDITABLE(row), marked);
    g_free(marked);
  }

  [[nodiscard]] TaughtParts stated() const {
    return {.kind = kinds.at(adw_combo_row_get_selected(ADW_COMBO_ROW(kind_))),
            .amount = statedIn(amount_),
            .payee = statedIn(payee_)};
  }

  // Absent after a mark beside the part that is wrong.
  std::optional<MessageTemplate> taught(const TaughtParts& parts) {
    try {
      return recognition::teach(message_, parts, window_.book().currency());
    } catch (const CannotTeach& wrong) {
      GtkWidget* row = wrong.part() == CannotTeach::Part::payee ? payee_ : amount_;
      mark(row, wrong.what());
      window_.tell("It cannot be learned: it " + std::string(wrong.what()));
      return std::nullopt;
    }
  }

  void learn() {
    const TaughtParts parts = stated();
    const auto made = taught(parts);
    if (!made) return;
    book::UserCommand command{.words = words(parts)};
    try {
      command.addedTemplate = recording::TemplateFile::add(*made);
    } catch (const Failure& failure) {
      return window_.tellFailure("Nothing Was Learned", failure.what());
    }
    auto* window = &window_;
    const auto number = window_.changeAs(command, "Learned", [this](book::Book& book) {
      correct(book, recording::TemplateFile::reader());
    });
    if (!number) return;
    offerOthers(*window, command.words, *number, *made);
    window->popAll();  // the pages below show the message as it was read before
  }

  [[nodiscard]] std::string words(const TaughtParts& parts) const {
    std::string words = "teach " + shown_.name();
    if (!parts.kind) return words + " --kind none";
    words += std::string(" --kind ") + kindText(*parts.kind);
    words += " --amount " + book::commandWord(parts.amount);
    if (!parts.payee.empty()) words += " --payee " + book::commandWord(parts.payee);
    return words;
  }

  // The message itself, as it is read now.
  void correct(book::Book& book, const recording::MessageReader& read) const {
    const auto& currency = window_.book().currency();
    if (shown_.entry) {
      const auto now = recording::reread(book, shown_.entry->id, read, currency);
      if (now && now->state == book::LedgerEntry::State::booked) book.bookAs(*now);
      return;
    }
    const auto& message = *shown_.ignored;
    recording::addIgnored(book, message.number,
                          recording::readingFor(book, read, message.text, message.date, currency));
  }

  static void offerOthers(AppWindow& window, const std::string& words, std::int64_t number,
                          const MessageTemplate& made) {
    std::vector<book::LedgerEntry> others;
    window.read([&](const book::Book& book) {
      others = recording::taughtEntries(book, made, recording::TemplateFile::reader(),
                                        window.book().currency())
                   .clear;
    });
    if (others.empty()) return;
    const std::string count = std::to_string(others.size());
    window.ask(count + (others.size() == 1 ? " other message" : " other messages") + " like it",
               "They are read otherwise now than the book has them.", "Book Them So",
               [&window, words, number, others, count] {
                 window.changeMore(words, number, "Booked " + count, [&](book::Book& book) {
                   for (const auto& entry : others) book.bookAs(entry);
                 });
               });
  }

  AppWindow& window_;
  Shown shown_;
  std::string message_;
  GtkWidget* box_;
  GtkWidget* text_ = nullptr;
  GtkWidget* kind_ = nullptr;
  GtkWidget* amount_ = nullptr;
  GtkWidget* payee_ = nullptr;
};

}  // namespace

void openTeachPage(AppWindow& window, std::int64_t id) {
  std::optional<book::LedgerEntry> entry;
  if (!window.read([&](const book::Book& book) { entry = book.entry(id); })) return;
  if (!entry || !entry->text) return window.tell("Its text is not kept any more");
  std::make_shared<TeachPage>(window, Shown{.entry = *std::move(entry)})->open();
}

void openTeachPageOfIgnored(AppWindow& window, std::int64_t number) {
  std::optional<book::IgnoredMessage> message;
  if (!window.read([&](const book::Book& book) { message = book.ignored(number); })) return;
  if (!message) return window.tell("This message is not kept any more");
  std::make_shared<TeachPage>(window, Shown{.ignored = *std::move(message)})->open();
}

}  // namespace kivo::app
