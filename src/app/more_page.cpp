#include "app/more_page.h"

#include <adwaita.h>

#include "app/app_window.h"
#include "app/widgets.h"

namespace kivo::app {

GtkWidget* newMorePage(AppWindow& window) {
  GtkWidget* group = rowGroup("");
  const auto add = [&](const char* title, const char* what, void (*open)(AppWindow&)) {
    GtkWidget* button = iconButton("go-next-symbolic", title, [&window, open] { open(window); });
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    gtk_widget_add_css_class(button, "flat");
    GtkWidget* row = plainRow(title, what, button);
    adw_action_row_set_activatable_widget(ADW_ACTION_ROW(row), button);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  };
  add("Accounts", "Balances, and what they do not explain", openAccountsPage);
  add("Budgets", "What a month may cost", openBudgetsPage);
  add("Rules", "What later payments will be", openRulesPage);
  add("Templates", "How messages are read that were taught", openTemplatesPage);
  add("History", "What was changed, and the way back", openHistoryPage);
  return scrolledColumn(withMargins(group, 12));
}

}  // namespace kivo::app
