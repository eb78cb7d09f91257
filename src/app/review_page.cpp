#include "app/review_page.h"

#include <string>
#include <utility>

#include "app/app_window.h"
#include "app/entry_actions.h"
#include "app/ignored_page.h"
#include "app/teach_page.h"
#include "app/widgets.h"
#include "book/current_day.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::app {

using book::IgnoredMessage;
using book::LedgerEntry;

namespace {

constexpr int gap = 18;
// More would take long to lay out; the next ones follow when these are decided.
constexpr std::int64_t mostCards = 20;
constexpr std::size_t mostPairs = 10;

// A box whose children stand side by side, so many at most, or below each other where there is no
// room.
GtkWidget* wrappingBox(guint most) {
  GtkWidget* box = gtk_flow_box_new();
  gtk_flow_box_set_selection_mode(GTK_FLOW_BOX(box), GTK_SELECTION_NONE);
  gtk_flow_box_set_min_children_per_line(GTK_FLOW_BOX(box), 1);
  gtk_flow_box_set_max_children_per_line(GTK_FLOW_BOX(box), most);
  gtk_flow_box_set_column_spacing(GTK_FLOW_BOX(box), 6);
  gtk_flow_box_set_row_spacing(GTK_FLOW_BOX(box), 6);
  return box;
}

void appendWrapped(GtkWidget* box, GtkWidget* widget) {
  GtkWidget* child = gtk_flow_box_child_new();
  gtk_widget_set_focusable(child, FALSE);
  gtk_flow_box_child_set_child(GTK_FLOW_BOX_CHILD(child), widget);
  gtk_flow_box_append(GTK_FLOW_BOX(box), child);
}

}  // namespace

ReviewPage::ReviewPage(AppWindow& window)
    : window_(window),
      page_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)),
      content_(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap)),
      shown_(page_, [this] { read(); }) {
  gtk_box_append(GTK_BOX(page_), scrolledColumn(withMargins(content_, 12)));
}

void ReviewPage::read() {
  std::vector<LedgerEntry> entries;
  std::vector<Pair> pairs;
  std::vector<IgnoredMessage> ignored;
  std::int64_t waiting = 0;
  const bool isRead = window_.read([&](const book::Book& book) {
    entries = book.entries({.state = LedgerEntry::State::review, .most = mostCards});
    waiting = book.reviewCount();
    for (const auto& [outgoing, incoming] : book.likelyPairs()) {
      if (pairs.size() == mostPairs) break;
      auto one = book.entry(outgoing);
      auto other = book.entry(incoming);
      if (one && other) pairs.emplace_back(*std::move(one), *std::move(other));
    }
    ignored = book.ignored();
  });
  if (!isRead) return;
  clearBox(content_);
  if (entries.empty() && pairs.empty()) {
    gtk_box_append(GTK_BOX(content_),
                   statusPage("emblem-ok-symbolic", "Nothing Waits for You",
                              "Messages that can be read in two ways are shown here."));
  }
  addCards(entries, waiting);
  addPairs(pairs);
  addIgnored(ignored);
}

void ReviewPage::addCards(const std::vector<LedgerEntry>& entries, std::int64_t waiting) {
  for (const LedgerEntry& entry : entries) gtk_box_append(GTK_BOX(content_), card(entry));
  const auto more = waiting - static_cast<std::int64_t>(entries.size());
  if (more > 0) {
    gtk_box_append(GTK_BOX(content_), textLabel(std::to_string(more) + " more wait", "dim-label"));
  }
}

GtkWidget* ReviewPage::card(const LedgerEntry& entry) {
  const std::string text = entry.text ? *entry.text : "Its text was forgotten.";
  GtkWidget* message = textLabel(text);
  gtk_label_set_selectable(GTK_LABEL(message), TRUE);
  gtk_widget_set_valign(message, GTK_ALIGN_START);
  // Side by side where there is room, else one below the other.
  GtkWidget* sides = wrappingBox(2);
  for (GtkWidget* side : {message, reading(entry)}) {
    gtk_widget_set_size_request(side, 260, -1);
    appendWrapped(sides, side);
  }
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  gtk_box_append(GTK_BOX(box), sides);
  gtk_box_append(GTK_BOX(box), buttons(entry));
  GtkWidget* frame = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_widget_add_css_class(frame, "card");
  gtk_box_append(GTK_BOX(frame), withMargins(box, 12));
  return frame;
}

GtkWidget* ReviewPage::reading(const LedgerEntry& entry) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  const std::string sum = entry.amount ? sums_.text(entry) : "Its sum is not clear";
  gtk_box_append(GTK_BOX(box), textLabel(sum, "title-4"));
  gtk_box_append(GTK_BOX(box), textLabel(shownName(entry.description)));
  std::string facts = std::string(kindWord(entry)) + ", " + shownName(entry.category) + ", " +
                      dayName(entry.date, book::currentDay());
  if (!entry.account.empty()) facts += ", account " + shownName(entry.account);
  gtk_box_append(GTK_BOX(box), textLabel(facts, "dim-label"));
  if (entry.amount && entry.amount->currency != window_.book().currency()) {
    const std::string code = entry.amount->currency.text();
    gtk_box_append(
        GTK_BOX(box),
        textLabel("In " + code + "; kivo-ledger rate " + code + " RATE converts it", "caption"));
  }
  if (entry.possibleDuplicateOf) {
    const std::int64_t other = *entry.possibleDuplicateOf;
    gtk_box_append(GTK_BOX(box), textButton("Looks Like Another Payment",
                                            [this, other] { window_.openPayment(other); }));
  }
  return box;
}

GtkWidget* ReviewPage::buttons(const LedgerEntry& entry) {
  const std::int64_t id = entry.id;
  const std::string name = shownName(entry.description);
  GtkWidget* right = textButton("Right", [this, id] { saysRight(window_, id); });
  gtk_widget_add_css_class(right, "suggested-action");
  GtkWidget* change = textButton("Change", [this, id] { window_.openPayment(id); });
  GtkWidget* none = textButton("Not a Payment", [this, id] { deletePayment(window_, id); });
  GtkWidget* teach = textButton("Teach", [this, id] { openTeachPage(window_, id); });
  gtk_widget_set_sensitive(teach, entry.text ? TRUE : FALSE);
  nameFor(teach, "Teach: " + name);
  nameFor(right, "Right: " + name);
  nameFor(change, "Change: " + name);
  nameFor(none, "Not a payment: " + name);
  GtkWidget* box = wrappingBox(4);
  for (GtkWidget* button : {right, change, none, teach}) appendWrapped(box, button);
  return box;
}

void ReviewPage::addPairs(const std::vector<Pair>& pairs) {
  if (pairs.empty()) return;
  GtkWidget* group = rowGroup("One transfer, or two payments?");
  for (const Pair& pair : pairs) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), pairRow(pair));
  }
  gtk_box_append(GTK_BOX(content_), group);
}

GtkWidget* ReviewPage::pairRow(const Pair& pair) {
  const auto& [out, in] = pair;
  const auto decide = [this, one = out.id, other = in.id](bool isOne) {
    const std::string words =
        (isOne ? "pair " : "unpair ") + std::to_string(one) + " " + std::to_string(other);
    const char* done = isOne ? "They are one transfer" : "They stay two payments";
    window_.change(words, done, [&](book::Book& book) {
      const bool isDone = isOne ? book.pair(one, other) : book.unpair(one, other);
      if (!isDone) throw linux_platform::Failure("one of them was changed meanwhile");
    });
  };
  GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_widget_set_valign(buttons, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(buttons), textButton("One", [decide] { decide(true); }));
  gtk_box_append(GTK_BOX(buttons), textButton("Two", [decide] { decide(false); }));
  std::string way = shownName(out.account.empty() ? out.description : out.account);
  way += " → " + shownName(in.account.empty() ? in.description : in.account);
  way += ", " + dayName(out.date, book::currentDay());
  return plainRow(sums_.text(*out.amount), way, buttons);
}

void ReviewPage::addIgnored(const std::vector<IgnoredMessage>& messages) {
  if (messages.empty()) return;
  GtkWidget* group = rowGroup("Not booked");
  adw_preferences_group_set_description(
      ADW_PREFERENCES_GROUP(group),
      "Messages of the last 30 days that hold a sum and report no payment, or a refused one");
  for (const IgnoredMessage& message : messages) {
    const std::int64_t number = message.number;
    const bool wasDeclined = message.reason == IgnoredMessage::Reason::declined;
    const std::string detail =
        dayName(message.date, book::currentDay()) + (wasDeclined ? ", declined" : "");
    GtkWidget* book = textButton("Book", [this, number] { openIgnoredPage(window_, number); });
    nameFor(book, "Book: " + shownName(message.text));
    gtk_widget_set_valign(book, GTK_ALIGN_CENTER);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group),
                              plainRow(shownName(message.text), detail, book));
  }
  gtk_box_append(GTK_BOX(content_), group);
}

}  // namespace kivo::app
