#include "app/entry_fields.h"

#include <array>

#include "app/signals.h"
#include "app/stated_texts.h"
#include "app/widgets.h"

namespace kivo::app {

using money::Day;
using money::Kind;
using money::Money;

namespace {

constexpr std::array kinds = {Kind::expense, Kind::income, Kind::transfer};

}  // namespace

EntryFields::EntryFields(const char* heading, const money::CurrencyCode& currency,
                         const std::vector<std::string>& categories)
    : group_(rowGroup(heading)),
      name_(statedText("Payee")),
      sum_(statedText("Sum")),
      currency_(statedText("Currency")),
      day_(statedText("Day")),
      kind_(adw_combo_row_new()),
      category_(statedText("Category")) {
  const char* const names[] = {"Expense", "Income", "Transfer between own accounts", nullptr};
  GtkStringList* list = gtk_string_list_new(names);
  adw_combo_row_set_model(ADW_COMBO_ROW(kind_), G_LIST_MODEL(list));
  g_object_unref(list);
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(kind_), "Kind");
  gtk_editable_set_text(GTK_EDITABLE(currency_), currency.text().c_str());
  addCalendar();
  addChoices(category_, "Pick a category", categories);
  for (GtkWidget* row : {name_, sum_, currency_, day_, kind_, category_}) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group_), row);
  }
}

void EntryFields::addCalendar() {
  GtkWidget* calendar = gtk_calendar_new();
  GtkWidget* popover = gtk_popover_new();
  gtk_popover_set_child(GTK_POPOVER(popover), calendar);
  onSignal(popover, "show", [this, calendar] {
    const auto day = Day::fromText(statedIn(day_));
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

void EntryFields::set(const book::LedgerEntry& entry) {
  gtk_editable_set_text(GTK_EDITABLE(name_), entry.description.c_str());
  gtk_editable_set_text(GTK_EDITABLE(sum_), entry.amount ? amountText(*entry.amount).c_str() : "");
  setDay(entry.date);
  for (guint at = 0; at < kinds.size(); ++at) {
    if (kinds.at(at) == entry.kind) adw_combo_row_set_selected(ADW_COMBO_ROW(kind_), at);
  }
  gtk_editable_set_text(GTK_EDITABLE(category_), entry.category.c_str());
}

void EntryFields::addRefund(bool isRefund) {
  refund_ = gtk_switch_new();
  gtk_switch_set_active(GTK_SWITCH(refund_), isRefund ? TRUE : FALSE);
  gtk_widget_set_valign(refund_, GTK_ALIGN_CENTER);
  nameFor(refund_, "It gives back a payment");
  GtkWidget* row = plainRow("It gives back a payment", "", refund_);
  adw_action_row_set_activatable_widget(ADW_ACTION_ROW(row), refund_);
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group_), row);
  const auto follow = [this, row] {
    gtk_widget_set_visible(row, kind() == Kind::income ? TRUE : FALSE);
  };
  onSignal(kind_, "notify::selected", follow);
  follow();
}

void EntryFields::setDay(const Day& day) {
  gtk_editable_set_text(GTK_EDITABLE(day_), day.text().c_str());
}

std::optional<std::string> EntryFields::name() const {
  std::string text = statedIn(name_);
  if (!text.empty()) return text;
  mark(name_, "Give the shop or the person");
  return std::nullopt;
}

std::optional<Money> EntryFields::sum() const {
  const auto currency = money::CurrencyCode::fromText(statedIn(currency_));
  if (!currency) {
    mark(currency_, "Give the three letters of a currency, such as EGP");
    return std::nullopt;
  }
  const auto sum = money::moneyFromText(statedIn(sum_), *currency);
  if (sum && isBookable(*sum)) return sum;
  mark(sum_, "Give a sum above zero, such as 1,189.50");
  return std::nullopt;
}

std::optional<Day> EntryFields::day() const {
  const auto day = Day::fromText(statedIn(day_));
  if (!day) mark(day_, "Give a day, such as 2026-11-21");
  return day;
}

Kind EntryFields::kind() const {
  return kinds.at(adw_combo_row_get_selected(ADW_COMBO_ROW(kind_)));
}

bool EntryFields::refund() const {
  return refund_ != nullptr && kind() == Kind::income &&
         gtk_switch_get_active(GTK_SWITCH(refund_)) != FALSE;
}

std::string EntryFields::category() const { return statedIn(category_); }

}  // namespace kivo::app
