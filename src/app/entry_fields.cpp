#include "app/entry_fields.h"

#include <array>

#include "app/signals.h"
#include "app/widgets.h"

namespace kivo::app {

using money::Day;
using money::Kind;
using money::Money;

namespace {

constexpr std::array kinds = {Kind::expense, Kind::income, Kind::transfer};
constexpr int pickerHeight = 320;

std::string textOf(GtkWidget* row) {
  std::string text = gtk_editable_get_text(GTK_EDITABLE(row));
  const auto first = text.find_first_not_of(" \t\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

// Marks a row whose text cannot be; `why` is null when it can.
void mark(GtkWidget* row, const char* why) {
  if (why == nullptr) {
    gtk_widget_remove_css_class(row, "error");
    gtk_widget_set_tooltip_text(row, nullptr);
    return;
  }
  gtk_widget_add_css_class(row, "error");
  gtk_widget_set_tooltip_text(row, why);
  gtk_widget_grab_focus(row);
}

// A button at the end of `row` that opens `content`.
void addPopover(GtkWidget* row, const char* icon, const char* name, GtkWidget* popover) {
  GtkWidget* button = gtk_menu_button_new();
  gtk_menu_button_set_icon_name(GTK_MENU_BUTTON(button), icon);
  gtk_menu_button_set_popover(GTK_MENU_BUTTON(button), popover);
  gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
  gtk_widget_add_css_class(button, "flat");
  gtk_widget_set_tooltip_text(button, name);
  nameFor(button, name);
  adw_entry_row_add_suffix(ADW_ENTRY_ROW(row), button);
}

}  // namespace

EntryFields::EntryFields(const char* heading, const money::CurrencyCode& currency,
                         const std::vector<std::string>& categories)
    : currency_(currency),
      group_(rowGroup(heading)),
      name_(entryRow("Payee")),
      sum_(entryRow(("Sum in " + currency.text()).c_str())),
      day_(entryRow("Day")),
      kind_(adw_combo_row_new()),
      category_(entryRow("Category")) {
  const char* const names[] = {"Expense", "Income", "Transfer between own accounts", nullptr};
  GtkStringList* list = gtk_string_list_new(names);
  adw_combo_row_set_model(ADW_COMBO_ROW(kind_), G_LIST_MODEL(list));
  g_object_unref(list);
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(kind_), "Kind");
  addCalendar();
  addCategoryPicker(categories);
  for (GtkWidget* row : {name_, sum_, day_, kind_, category_}) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group_), row);
  }
}

GtkWidget* EntryFields::entryRow(const char* title) {
  GtkWidget* row = adw_entry_row_new();
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(row), title);
  // The part that has the focus is not named by the row.
  nameFor(GTK_WIDGET(gtk_editable_get_delegate(GTK_EDITABLE(row))), title);
  onSignal(row, "changed", [row] { mark(row, nullptr); });
  return row;
}

void EntryFields::addCalendar() {
  GtkWidget* calendar = gtk_calendar_new();
  GtkWidget* popover = gtk_popover_new();
  gtk_popover_set_child(GTK_POPOVER(popover), calendar);
  onSignal(popover, "show", [this, calendar] {
    const auto day = Day::fromText(textOf(day_));
    if (!day) return;
    const std::string text = day->text();
    GDateTime* date =
        g_date_time_new_local(std::stoi(text), std::stoi(text.substr(5)), day->number(), 12, 0, 0);
    if (date == nullptr) return;
    gtk_calendar_select_day(GTK_CALENDAR(calendar), date);
    g_date_time_unref(date);
  });
  onSignal(calendar, "day-selected", [this, calendar, popover] {
    if (gtk_widget_get_mapped(popover) == FALSE) return;
    GDateTime* date = gtk_calendar_get_date(GTK_CALENDAR(calendar));
    char* text = g_date_time_format(date, "%Y-%m-%d");
    gtk_editable_set_text(GTK_EDITABLE(day_), text);
    g_free(text);
    g_date_time_unref(date);
  });
  addPopover(day_, "x-office-calendar-symbolic", "Pick a day", popover);
}

void EntryFields::addCategoryPicker(const std::vector<std::string>& categories) {
  GtkWidget* list = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  GtkWidget* scrolled = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), pickerHeight);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), list);
  GtkWidget* popover = gtk_popover_new();
  gtk_popover_set_child(GTK_POPOVER(popover), scrolled);
  for (const std::string& category : categories) {
    GtkWidget* button = textButton(shownName(category).c_str(), [this, category, popover] {
      gtk_editable_set_text(GTK_EDITABLE(category_), category.c_str());
      gtk_popover_popdown(GTK_POPOVER(popover));
    });
    gtk_widget_add_css_class(button, "flat");
    gtk_box_append(GTK_BOX(list), button);
  }
  addPopover(category_, "view-list-symbolic", "Pick a category", popover);
}

void EntryFields::set(const book::LedgerEntry& entry) {
  gtk_editable_set_text(GTK_EDITABLE(name_), entry.description.c_str());
  gtk_editable_set_text(GTK_EDITABLE(sum_), entry.amount ? amountText(*entry.amount).c_str() : "");
  setDay(entry.date);
  for (guint at = 0; at < kinds.size(); ++at) {
    if (kinds.at(at) == entry.kind) adw_combo_row_set_selected(ADW_COMBO_ROW(kind_), at);
  }
  gtk_editable_set_text(GTK_EDITABLE(category_), entry.category.c_str());
}

void EntryFields::setDay(const Day& day) {
  gtk_editable_set_text(GTK_EDITABLE(day_), day.text().c_str());
}

std::optional<std::string> EntryFields::name() const {
  std::string text = textOf(name_);
  if (!text.empty()) return text;
  mark(name_, "Give the shop or the person");
  return std::nullopt;
}

std::optional<Money> EntryFields::sum() const {
  const auto sum = money::moneyFromText(textOf(sum_), currency_);
  if (sum && isBookable(*sum)) return sum;
  mark(sum_, "Give a sum above zero, such as 1,189.50");
  return std::nullopt;
}

std::optional<Day> EntryFields::day() const {
  const auto day = Day::fromText(textOf(day_));
  if (!day) mark(day_, "Give a day, such as 2026-11-21");
  return day;
}

Kind EntryFields::kind() const {
  return kinds.at(adw_combo_row_get_selected(ADW_COMBO_ROW(kind_)));
}

std::string EntryFields::category() const { return textOf(category_); }

}  // namespace kivo::app
