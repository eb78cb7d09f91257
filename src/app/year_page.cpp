#include "app/year_page.h"

#include <algorithm>
#include <memory>
#include <string>

#include "app/app_window.h"
#include "app/bars.h"
#include "app/sum_texts.h"
#include "app/widgets.h"
#include "overview/year_summary.h"

namespace kivo::app {

using money::Money;
using overview::YearSummary;

namespace {

constexpr int gap = 18;

class YearPage {
 public:
  YearPage(AppWindow& window, const money::Year& year)
      : window_(window), year_(year), box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap)) {
    withMargins(box_, 12);
  }

  [[nodiscard]] GtkWidget* box() const { return box_; }

  void read() {
    YearSummary figures(year_, window_.book().currency());
    const bool isRead = window_.read([&](const book::Book& book) {
      figures = overview::summarize(book, year_, window_.book().currency());
    });
    if (!isRead) return;
    clearBox(box_);
    addSums(figures);
    addMonths(figures);
    addCategories(figures);
    addPayees(figures);
  }

 private:
  std::string inYearBefore(const Money& sum) {
    return sums_.text(sum) + " in " + year_.before().text();
  }

  void addSums(const YearSummary& figures) {
    GtkWidget* group = rowGroup("Sums");
    const auto add = [&](const char* name, const Money& sum, const Money& before) {
      adw_preferences_group_add(
          ADW_PREFERENCES_GROUP(group),
          plainRow(name, inYearBefore(before), gtk_label_new(sums_.text(sum).c_str())));
    };
    add("Spent", figures.sums.expense, figures.previous.expense);
    add("Received", figures.sums.income, figures.previous.income);
    add("Saved", figures.sums.saving(), figures.previous.saving());
    gtk_box_append(GTK_BOX(box_), group);
  }

  void addMonths(const YearSummary& figures) {
    Money largest{0, figures.currency};
    for (const auto& month : figures.months) {
      if (month.sums.expense.minorUnits > largest.minorUnits) largest = month.sums.expense;
    }
    GtkWidget* group = rowGroup("Months");
    for (std::size_t at = 0; at < std::min(figures.shownMonths, figures.months.size()); ++at) {
      const auto& month = figures.months[at];
      const std::string detail =
          "received " + sums_.text(month.sums.income) + "; " + inYearBefore(month.previous);
      adw_preferences_group_add(ADW_PREFERENCES_GROUP(group),
                                barRow(month.month.name(), sums_.text(month.sums.expense), detail,
                                       shareBar(month.sums.expense, largest, Bar::within)));
    }
    gtk_box_append(GTK_BOX(box_), group);
  }

  void addCategories(const YearSummary& figures) {
    if (figures.categories.empty()) return;
    GtkWidget* group = rowGroup("Categories");
    for (const auto& category : figures.categories) {
      adw_preferences_group_add(
          ADW_PREFERENCES_GROUP(group),
          barRow(shownName(category.name), sums_.text(category.expense),
                 inYearBefore(category.previous),
                 shareBar(category.expense, figures.sums.expense, Bar::within)));
    }
    gtk_box_append(GTK_BOX(box_), group);
  }

  void addPayees(const YearSummary& figures) {
    if (figures.payees.empty()) return;
    GtkWidget* group = rowGroup("Payees");
    for (std::size_t at = 0; at < figures.payees.size(); ++at) {
      const auto& payee = figures.payees[at];
      adw_preferences_group_add(
          ADW_PREFERENCES_GROUP(group),
          plainRow(shownName(payee.description), inYearBefore(figures.payeesBefore[at]),
                   gtk_label_new(sums_.text(payee.expense).c_str())));
    }
    gtk_box_append(GTK_BOX(box_), group);
  }

  AppWindow& window_;
  money::Year year_;
  GtkWidget* box_;
  SumTexts sums_;
};

}  // namespace

void openYearPage(AppWindow& window, const money::Year& year) {
  const auto page = std::make_shared<YearPage>(window, year);
  page->read();
  window.push("The year " + year.text(), scrolledColumn(page->box()), nullptr,
              [page] { page->read(); });
}

}  // namespace kivo::app
