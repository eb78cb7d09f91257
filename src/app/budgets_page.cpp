#include <optional>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/bars.h"
#include "app/more_page.h"
#include "app/pushed_list.h"
#include "app/signals.h"
#include "app/stated_texts.h"
#include "app/sum_texts.h"
#include "app/widgets.h"
#include "book/current_day.h"
#include "overview/month_summary.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::app {

using money::Money;
using overview::BudgetFigures;

namespace {

void setBudget(AppWindow& window, const std::string& category, const Money& sum) {
  const std::string words = "budget " + book::commandWord(category) + " " + amountText(sum);
  window.change(words, "Set", [&](book::Book& book) {
    if (!book.knowsCategory(category)) {
      throw linux_platform::Failure("no payment is of the category " + shownName(category));
    }
    book.setBudget({category, sum});
  });
}

void removeBudget(AppWindow& window, const std::string& category) {
  window.change("budget " + book::commandWord(category) + " --remove", "Removed",
                [&](book::Book& book) { book.removeBudget(category, std::nullopt); });
}

GtkWidget* budgetRow(AppWindow& window, const BudgetFigures& budget, SumTexts& sums) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_widget_set_valign(box, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(box), gtk_label_new(sums.text(budget.amount).c_str()));
  const std::string name = "Remove the budget of " + shownName(budget.category);
  GtkWidget* remove =
      iconButton("user-trash-symbolic", name.c_str(),
                 [&window, category = budget.category] { removeBudget(window, category); });
  gtk_widget_add_css_class(remove, "flat");
  gtk_box_append(GTK_BOX(box), remove);
  return plainRow(shownName(budget.category), sums.text(budget.spent) + " spent this month", box);
}

GtkWidget* newBudget(AppWindow& window) {
  std::vector<std::string> categories;
  window.read([&](const book::Book& book) { categories = book.categories(); });
  const auto currency = window.book().currency();
  GtkWidget* group = rowGroup("Set a budget");
  GtkWidget* category = statedText("Category");
  GtkWidget* sum = statedText(("A month may cost, in " + currency.text()).c_str());
  addChoices(category, "Pick a category", categories);
  for (GtkWidget* row : {category, sum}) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  GtkWidget* set = textButton("Set", [&window, category, sum, currency] {
    const std::string name = statedIn(category);
    const auto limit = money::moneyFromText(statedIn(sum), currency);
    if (name.empty()) return mark(category, "Give a category");
    if (!limit || !isBookable(*limit)) return mark(sum, "Give a sum above zero, such as 3,000");
    setBudget(window, name, *limit);
  });
  gtk_widget_set_halign(set, GTK_ALIGN_END);
  gtk_widget_set_margin_top(set, 12);
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), set);
  return group;
}

}  // namespace

void openBudgetsPage(AppWindow& window) {
  pushList(window, "Budgets", [&window](GtkWidget* box) {
    std::vector<BudgetFigures> budgets;
    window.read([&](const book::Book& book) {
      budgets = overview::summarize(book, book::currentMonth(), window.book().currency()).budgets;
    });
    SumTexts sums;
    if (!budgets.empty()) {
      GtkWidget* group = rowGroup("This month");
      for (const BudgetFigures& budget : budgets) {
        adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), budgetRow(window, budget, sums));
      }
      gtk_box_append(GTK_BOX(box), group);
    }
    gtk_box_append(GTK_BOX(box), newBudget(window));
  });
}

}  // namespace kivo::app
