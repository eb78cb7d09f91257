#include "app/month_page.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/bars.h"
#include "app/widgets.h"
#include "app/year_page.h"
#include "book/current_day.h"
#include "overview/report_figures.h"

namespace kivo::app {

using money::Money;
using money::Month;
using overview::MonthSummary;

namespace {

constexpr int gap = 18;
// Pixels a second: slower is a finger that rests or scrolls.
constexpr double swipeSpeed = 300;

std::string counted(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// A sum below its name, for the head of the page.
GtkWidget* headSum(const char* name, const std::string& sum, const std::string& detail) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  gtk_box_append(GTK_BOX(box), lineLabel(name, "dim-label"));
  gtk_box_append(GTK_BOX(box), textLabel(sum, "title-2"));
  if (!detail.empty()) gtk_box_append(GTK_BOX(box), textLabel(detail, "caption"));
  gtk_widget_set_hexpand(box, TRUE);
  return box;
}

book::EntryFilter monthFilter(const Month& month) {
  const money::Period period = money::Period::of(month);
  return {.from = period.first, .to = period.last};
}

}  // namespace

MonthPage::MonthPage(AppWindow& window)
    : window_(window),
      page_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)),
      shown_(page_, [this] { read(); }) {
  content_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, gap);
  withMargins(content_, 12);
  gtk_box_append(GTK_BOX(page_), navigation());
  gtk_box_append(GTK_BOX(page_), scrolledColumn(content_));
  listenToSwipes();
}

GtkWidget* MonthPage::navigation() {
  GtkWidget* bar = gtk_center_box_new();
  title_ = gtk_label_new("");
  gtk_widget_add_css_class(title_, "title-4");
  next_ = iconButton("go-next-symbolic", "Next month", [this] { show(monthsBack_ - 1); });
  gtk_center_box_set_start_widget(
      GTK_CENTER_BOX(bar),
      iconButton("go-previous-symbolic", "Previous month", [this] { show(monthsBack_ + 1); }));
  gtk_center_box_set_center_widget(GTK_CENTER_BOX(bar), title_);
  gtk_center_box_set_end_widget(GTK_CENTER_BOX(bar), next_);
  gtk_widget_add_css_class(bar, "toolbar");
  return bar;
}

void MonthPage::listenToSwipes() {
  GtkGesture* swipe = gtk_gesture_swipe_new();
  gtk_gesture_single_set_touch_only(GTK_GESTURE_SINGLE(swipe), TRUE);
  onSignal(swipe, "swipe", [this, swipe] {
    double x = 0;
    double y = 0;
    gtk_gesture_swipe_get_velocity(GTK_GESTURE_SWIPE(swipe), &x, &y);
    if (std::abs(x) < swipeSpeed || std::abs(x) < 2 * std::abs(y)) return;
    show(x < 0 ? monthsBack_ - 1 : monthsBack_ + 1);
  });
  gtk_widget_add_controller(page_, GTK_EVENT_CONTROLLER(swipe));
}

void MonthPage::show(int monthsBack) {
  monthsBack_ = std::max(0, monthsBack);
  read();
}

void MonthPage::read() {
  readingRecurring_.cancel();
  const Month month = book::currentMonth().before(monthsBack_);
  const auto& currency = window_.book().currency();
  MonthSummary figures(month, currency);
  std::vector<Money> days;
  const bool isRead = window_.read([&](const book::Book& book) {
    const auto counts = book.counted(money::Period::of(month.before(), month));
    figures = overview::summarize(book, month, currency, counts);
    days = overview::expensesOfDays(book, month, currency, counts.largest);
  });
  if (!isRead) return;
  build(figures, days);
  if (figures.today) readingRecurring_.call([this] { readRecurring(); });
}

void MonthPage::build(const Figures& figures, const std::vector<Money>& days) {
  gtk_label_set_text(GTK_LABEL(title_), figures.month.name().c_str());
  gtk_widget_set_sensitive(next_, monthsBack_ > 0);
  clearBox(content_);
  addSums(figures);
  addNotes(figures);
  if (figures.isEmpty()) {
    gtk_box_append(GTK_BOX(content_),
                   statusPage("x-office-calendar-symbolic", "Nothing Is Booked",
                              "Payments come from your bank's messages. Add one by the button "
                              "above, or read old messages with kivo-ledger import."));
  }
  addBudgets(figures);
  addCategories(figures);
  addDays(figures, days);
  recurring_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(content_), recurring_);
  addPayees(figures);
  addOtherCurrencies(figures);
  const money::Year year = figures.month.year();
  const std::string label = "The year " + year.text();
  GtkWidget* button = textButton(label.c_str(), [this, year] { openYearPage(window_, year); });
  gtk_widget_add_css_class(button, "pill");
  gtk_widget_set_halign(button, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(content_), button);
}

void MonthPage::addSums(const Figures& figures) {
  const auto before = [&](const Money& sum) {
    return sums_.text(sum) + " in " + figures.month.before().name();
  };
  std::string spent = before(figures.previous.expense);
  if (figures.sums.refunded.minorUnits != 0) {
    Money whole = figures.sums.expense;
    whole += figures.sums.refunded;
    spent =
        sums_.text(whole) + " less " + sums_.text(figures.sums.refunded) + " refunded; " + spent;
  }
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, gap);
  gtk_box_set_homogeneous(GTK_BOX(box), TRUE);
  gtk_box_append(GTK_BOX(box), headSum("Spent", sums_.text(figures.sums.expense), spent));
  gtk_box_append(GTK_BOX(box), headSum("Received", sums_.text(figures.sums.income),
                                       before(figures.previous.income)));
  gtk_box_append(GTK_BOX(content_), box);
  if (!figures.today) return;
  const auto& today = *figures.today;
  gtk_box_append(GTK_BOX(content_), textLabel("Today " + sums_.text(today.expense) + ", " +
                                                  counted(today.expenses, "payment", "payments"),
                                              "dim-label"));
}

void MonthPage::addNotes(const Figures& figures) {
  if (figures.review > 0) {
    const std::string label = figures.review == 1
                                  ? "1 payment waits for you"
                                  : std::to_string(figures.review) + " payments wait for you";
    GtkWidget* button = textButton(label.c_str(), [this] { window_.showReview(); });
    gtk_widget_add_css_class(button, "suggested-action");
    gtk_box_append(GTK_BOX(content_), button);
  }
  const std::string leftOut = overview::leftOutNote(figures.leftOut);
  if (!leftOut.empty()) gtk_box_append(GTK_BOX(content_), textLabel(leftOut, "warning"));
}

void MonthPage::addBudgets(const Figures& figures) {
  if (figures.budgets.empty()) return;
  GtkWidget* group = rowGroup("Budgets");
  for (const auto& budget : figures.budgets) {
    const Money left = budget.left();
    const bool isOver = left.minorUnits < 0;
    const std::string detail = sums_.text(budget.spent) + " of " + sums_.text(budget.amount) +
                               ", " +
                               (isOver ? sums_.text({-left.minorUnits, left.currency}) + " over"
                                       : sums_.text(left) + " left");
    const std::string percent = std::to_string(budget.percent()) + " %";
    GtkWidget* bar = shareBar(budget.spent, budget.amount, isOver ? Bar::over : Bar::within);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group),
                              barRow(shownName(budget.category), percent, detail, bar));
  }
  gtk_box_append(GTK_BOX(content_), group);
}

void MonthPage::addCategories(const Figures& figures) {
  const Money whole = figures.sums.expense;
  GtkWidget* group = rowGroup("Categories");
  bool isAny = false;
  for (const auto& category : figures.categories) {
    if (category.expense.minorUnits == 0) continue;  // of the month before alone
    isAny = true;
    auto filter = monthFilter(figures.month);
    filter.category = category.name;
    GtkWidget* row = barRow(shownName(category.name), sums_.text(category.expense),
                            sums_.text(category.previous) + " in " + figures.month.before().name(),
                            shareBar(category.expense, whole, Bar::within),
                            [this, filter] { window_.showPayments(filter); });
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  if (!isAny) return g_object_ref_sink(group), g_object_unref(group);
  gtk_box_append(GTK_BOX(content_), group);
}

void MonthPage::addDays(const Figures& figures, const std::vector<Money>& days) {
  const auto isSpent = [](const Money& sum) { return sum.minorUnits != 0; };
  if (std::none_of(days.begin(), days.end(), isSpent)) return;
  GtkWidget* group = rowGroup("Days");
  gtk_box_append(GTK_BOX(content_), group);
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), dayChart(days, figures.month, sums_));
  GtkWidget* list = adw_expander_row_new();
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(list), "Each day as a figure");
  const money::Period period = money::Period::of(figures.month);
  for (std::size_t at = days.size(); at-- > 0;) {
    if (!isSpent(days[at])) continue;
    const auto day = period.last.before(static_cast<int>(days.size() - 1 - at));
    GtkWidget* row = plainRow(shortDayName(day), "", gtk_label_new(sums_.text(days[at]).c_str()),
                              [this, day] { window_.showPayments({.from = day, .to = day}); });
    adw_expander_row_add_row(ADW_EXPANDER_ROW(list), row);
  }
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), list);
}

void MonthPage::addPayees(const Figures& figures) {
  if (figures.payees.empty()) return;
  GtkWidget* group = rowGroup("Payees");
  for (const auto& payee : figures.payees) {
    auto filter = monthFilter(figures.month);
    filter.search = payee.description;
    GtkWidget* row =
        plainRow(shownName(payee.description), counted(payee.transactions, "payment", "payments"),
                 gtk_label_new(sums_.text(payee.expense).c_str()),
                 [this, filter] { window_.showPayments(filter); });
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  gtk_box_append(GTK_BOX(content_), group);
}

void MonthPage::addOtherCurrencies(const Figures& figures) {
  if (figures.otherCurrencies.empty()) return;
  GtkWidget* group = rowGroup("In other currencies");
  for (const auto& sums : figures.otherCurrencies) {
    GtkWidget* row = plainRow(sums.expense.currency.text(), "received " + sums_.text(sums.income),
                              gtk_label_new(sums_.text(sums.expense).c_str()));
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  gtk_box_append(GTK_BOX(content_), group);
}

// Reads fourteen months, which the rest of the page does not wait for.
void MonthPage::readRecurring() {
  MonthSummary figures(book::currentMonth(), window_.book().currency());
  const money::Day today = book::currentDay();
  figures.today = overview::TodaysExpenses{today, {}, {}};
  const bool isRead =
      window_.read([&](const book::Book& book) { overview::readRecurring(figures, book); });
  if (isRead) addRecurring(figures);
}

void MonthPage::addRecurring(const Figures& figures) {
  if (figures.recurring.empty()) return;
  GtkWidget* group = rowGroup("Comes each month");
  for (const auto& payment : figures.recurring) {
    const std::string due = dueWords(payment, figures.today->date);
    GtkWidget* row = plainRow(shownName(payment.description),
                              due.empty() ? "next on " + shortDayName(payment.next) : due,
                              gtk_label_new(sums_.text(payment.amount).c_str()));
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  gtk_box_append(GTK_BOX(recurring_), group);
}

}  // namespace kivo::app
