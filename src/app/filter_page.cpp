#include "app/filter_page.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/pushed_list.h"
#include "app/widgets.h"
#include "overview/account_figures.h"

namespace kivo::app {

using book::EntryFilter;

namespace {

void addChoice(GtkWidget* group, const std::string& title, const std::string& detail,
               std::function<void()> chosen) {
  GtkWidget* choose = iconButton("go-next-symbolic", ("Show " + title).c_str(), std::move(chosen));
  gtk_widget_set_valign(choose, GTK_ALIGN_CENTER);
  gtk_widget_add_css_class(choose, "flat");
  GtkWidget* row = plainRow(title, detail, choose);
  adw_action_row_set_activatable_widget(ADW_ACTION_ROW(row), choose);
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
}

GtkWidget* categories(AppWindow& window, const EntryFilter& filter) {
  std::vector<std::string> names;
  window.read([&](const book::Book& book) { names = book.categories(); });
  if (names.empty()) return nullptr;
  GtkWidget* group = rowGroup("Categories");
  for (const std::string& name : names) {
    EntryFilter chosen = filter;
    chosen.category = name;
    addChoice(group, shownName(name), "", [&window, chosen] { window.showPayments(chosen); });
  }
  return group;
}

GtkWidget* accounts(AppWindow& window, const EntryFilter& filter) {
  std::vector<overview::AccountFigures> all;
  window.read([&](const book::Book& book) {
    all = overview::accountFigures(book.accountEntries(), book.accounts());
  });
  if (all.empty()) return nullptr;
  GtkWidget* group = rowGroup("Accounts");
  std::set<std::string> shown;  // one with sums in two currencies has two figures
  for (const overview::AccountFigures& figures : all) {
    if (!shown.insert(figures.account).second) continue;
    EntryFilter chosen = filter;
    chosen.account = figures.account;
    const bool isNamed = !figures.name.empty();
    addChoice(group, shownName(isNamed ? figures.name : figures.account),
              isNamed ? shownName(figures.account) : "",
              [&window, chosen] { window.showPayments(chosen); });
  }
  return group;
}

}  // namespace

void openFilterPage(AppWindow& window, const EntryFilter& filter) {
  pushList(window, "Show Only", [&window, filter](GtkWidget* box) {
    GtkWidget* const ofAccounts = accounts(window, filter);
    GtkWidget* const ofCategories = categories(window, filter);
    for (GtkWidget* const group : {ofAccounts, ofCategories}) {
      if (group != nullptr) gtk_box_append(GTK_BOX(box), group);
    }
    if (ofAccounts != nullptr || ofCategories != nullptr) return;
    gtk_box_append(GTK_BOX(box), textLabel("Nothing is booked yet.", "dim-label"));
  });
}

}  // namespace kivo::app
