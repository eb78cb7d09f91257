#include "app/payments_page.h"

#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include "app/app_window.h"
#include "app/filter_page.h"
#include "app/widgets.h"
#include "book/current_day.h"

namespace kivo::app {

using book::EntryFilter;
using book::LedgerEntry;

namespace {

// After the last letter, so that a word is searched for once.
constexpr std::chrono::milliseconds typingPause(150);

constexpr std::array kinds = {std::optional<money::Kind>(), std::optional(money::Kind::expense),
                              std::optional(money::Kind::income),
                              std::optional(money::Kind::transfer)};

// The parts of a row, which are made once and shown again for other payments.
struct RowParts {
  GtkWidget* day;
  GtkWidget* button;
  GtkWidget* name;
  GtkWidget* detail;
  GtkWidget* sum;
  std::int64_t id = 0;
};

constexpr const char* partsKey = "kivo-row";

RowParts& partsOf(GtkListItem* item) {
  return *static_cast<RowParts*>(g_object_get_data(G_OBJECT(item), partsKey));
}

void makeRow(GtkListItem* item, AppWindow& window) {
  auto* parts = new RowParts{lineLabel("", "heading"), gtk_button_new(), lineLabel(""),
                             lineLabel("", "caption"), gtk_label_new("")};
  gtk_widget_set_margin_top(parts->day, 12);
  gtk_widget_set_margin_start(parts->day, 12);
  gtk_widget_add_css_class(parts->detail, "dim-label");
  GtkWidget* names = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  gtk_box_append(GTK_BOX(names), parts->name);
  gtk_box_append(GTK_BOX(names), parts->detail);
  gtk_widget_set_hexpand(names, TRUE);
  GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
  gtk_box_append(GTK_BOX(line), names);
  gtk_box_append(GTK_BOX(line), parts->sum);
  gtk_button_set_child(GTK_BUTTON(parts->button), line);
  gtk_widget_add_css_class(parts->button, "flat");
  gtk_widget_add_css_class(parts->button, "kivo-row");
  onSignal(parts->button, "clicked", [parts, &window] { window.openPayment(parts->id); });
  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  gtk_box_append(GTK_BOX(row), parts->day);
  gtk_box_append(GTK_BOX(row), parts->button);
  gtk_list_item_set_child(item, row);
  gtk_list_item_set_activatable(item, FALSE);
  gtk_list_item_set_selectable(item, FALSE);
  const auto destroy = +[](gpointer data) noexcept { delete static_cast<RowParts*>(data); };
  g_object_set_data_full(G_OBJECT(item), partsKey, parts, destroy);
}

std::string detailOf(const LedgerEntry& entry) {
  std::string detail = shownName(entry.category);
  if (!entry.account.empty()) detail += " · " + shownName(entry.account);
  if (entry.refund) detail += " · refund";
  if (entry.possibleDuplicateOf) detail += " · looks like another";
  return detail;
}

}  // namespace

PaymentsPage::PaymentsPage(AppWindow& window)
    : window_(window),
      page_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)),
      places_(newPaymentPlaces()),
      shown_(page_, [this] { read(); }) {
  gtk_box_append(GTK_BOX(page_), filters());
  gtk_box_append(GTK_BOX(page_), list());
  listenToFilters();
}

PaymentsPage::~PaymentsPage() { g_object_unref(places_); }

GtkWidget* PaymentsPage::filters() {
  search_ = gtk_search_entry_new();
  g_object_set(search_, "placeholder-text", "Name, category, account or sum", nullptr);
  nameFor(search_, "Search payments");
  gtk_widget_set_hexpand(search_, TRUE);
  GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_box_append(GTK_BOX(line), search_);
  gtk_box_append(GTK_BOX(line), kindChoice());
  gtk_box_append(GTK_BOX(line),
                 iconButton("view-more-symbolic", "Show only a category or an account",
                            [this] { openFilterPage(window_, filter_); }));
  chosenText_ = lineLabel("");
  gtk_widget_set_hexpand(chosenText_, TRUE);
  chosen_ = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_box_append(GTK_BOX(chosen_), chosenText_);
  gtk_box_append(GTK_BOX(chosen_), textButton("Show All", [this] { show({}); }));
  found_ = lineLabel("", "dim-label");
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_box_append(GTK_BOX(box), line);
  gtk_box_append(GTK_BOX(box), chosen_);
  gtk_box_append(GTK_BOX(box), found_);
  gtk_widget_add_css_class(box, "toolbar");
  return box;
}

GtkWidget* PaymentsPage::kindChoice() {
  const char* const names[] = {"All", "Expenses", "Income", "Transfers", nullptr};
  kind_ = gtk_drop_down_new_from_strings(names);
  nameFor(kind_, "Kind");
  return kind_;
}

void PaymentsPage::listenToFilters() {
  onSignal(search_, "search-changed", [this] {
    searching_.call(
        [this] {
          filter_.search = gtk_editable_get_text(GTK_EDITABLE(search_));
          read();
        },
        typingPause);
  });
  onSignal(kind_, "notify::selected", [this] {
    filter_.kind = kinds.at(gtk_drop_down_get_selected(GTK_DROP_DOWN(kind_)));
    read();
  });
}

GtkWidget* PaymentsPage::list() {
  GtkListItemFactory* factory = gtk_signal_list_item_factory_new();
  const auto setUp = +[](GtkListItemFactory*, GtkListItem* item, gpointer page) noexcept {
    makeRow(item, static_cast<PaymentsPage*>(page)->window_);
  };
  const auto bind = +[](GtkListItemFactory*, GtkListItem* item, gpointer page) noexcept {
    static_cast<PaymentsPage*>(page)->bindRow(item);
  };
  g_signal_connect(factory, "setup", G_CALLBACK(setUp), this);
  g_signal_connect(factory, "bind", G_CALLBACK(bind), this);
  auto* model = G_LIST_MODEL(g_object_ref(places_));
  GtkWidget* view = gtk_list_view_new(GTK_SELECTION_MODEL(gtk_no_selection_new(model)), factory);
  nameFor(view, "Payments");
  GtkWidget* clamp = adw_clamp_scrollable_new();
  adw_clamp_scrollable_set_maximum_size(ADW_CLAMP_SCROLLABLE(clamp), 720);
  adw_clamp_scrollable_set_child(ADW_CLAMP_SCROLLABLE(clamp), view);
  scrolled_ = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled_), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled_), clamp);
  gtk_widget_set_vexpand(scrolled_, TRUE);
  return scrolled_;
}

void PaymentsPage::show(const EntryFilter& filter) {
  filter_ = filter;
  gtk_editable_set_text(GTK_EDITABLE(search_), filter.search.c_str());
  for (guint at = 0; at < kinds.size(); ++at) {
    if (kinds.at(at) == filter.kind) gtk_drop_down_set_selected(GTK_DROP_DOWN(kind_), at);
  }
  searching_.cancel();
  gtk_widget_grab_focus(search_);
  read();
}

void PaymentsPage::read() {
  std::vector<book::EntryPlace> rows;
  if (!window_.read([&](const book::Book& book) { rows = book.places(filter_); })) return;
  const std::size_t count = rows.size();
  setPlaces(places_, std::move(rows));
  tellFilter();
  const std::string found = count == 0   ? "No payment is booked here"
                            : count == 1 ? "1 payment"
                                         : std::to_string(count) + " payments";
  gtk_label_set_text(GTK_LABEL(found_), found.c_str());
}

// What the search and the kind do not show.
void PaymentsPage::tellFilter() {
  std::string text = shownName(filter_.category);
  if (!filter_.account.empty()) {
    text += (text.empty() ? "Account " : ", account ") + shownName(filter_.account);
  }
  if (filter_.from && filter_.to) {
    const bool isDay = *filter_.from == *filter_.to;
    const bool isMonth = !isDay && filter_.from->month() == filter_.to->month();
    text += (text.empty() ? "" : ", ") +
            (isMonth ? filter_.from->month().name()
                     : dayName(*filter_.from, book::currentDay()) +
                           (isDay ? "" : " to " + dayName(*filter_.to, book::currentDay())));
  }
  gtk_label_set_text(GTK_LABEL(chosenText_), text.c_str());
  gtk_widget_set_visible(chosen_, text.empty() ? FALSE : TRUE);
}

void PaymentsPage::bindRow(GtkListItem* item) {
  const guint position = gtk_list_item_get_position(item);
  const auto& rows = rowsOf(places_);
  if (position >= rows.size()) return;
  std::optional<LedgerEntry> entry;
  window_.read([&](const book::Book& book) { entry = book.entry(rows[position].id); });
  if (entry) showRow(item, *entry, position);
}

void PaymentsPage::showRow(GtkListItem* item, const LedgerEntry& entry, guint position) {
  RowParts& parts = partsOf(item);
  const auto& rows = rowsOf(places_);
  const bool isFirst = position == 0 || rows[position - 1].date != rows[position].date;
  const std::string day = dayName(rows[position].date, book::currentDay());
  gtk_label_set_text(GTK_LABEL(parts.day), day.c_str());
  gtk_widget_set_visible(parts.day, isFirst ? TRUE : FALSE);
  const std::string name = shownName(entry.description);
  const std::string detail = detailOf(entry);
  const std::string sum = sums_.text(entry);
  gtk_label_set_text(GTK_LABEL(parts.name), name.c_str());
  gtk_label_set_text(GTK_LABEL(parts.detail), detail.c_str());
  gtk_label_set_text(GTK_LABEL(parts.sum), sum.c_str());
  nameFor(parts.button, name + ", " + sum + ", " + day + ", " + detail);
  parts.id = entry.id;
}

}  // namespace kivo::app
