// The page "More": the ways to accounts, budgets, rules, templates and history.
#pragma once

#include <gtk/gtk.h>

namespace kivo::app {

class AppWindow;

/// Returns the page. It changes nothing and reads nothing.
GtkWidget* newMorePage(AppWindow& window);

/// Show what the book keeps besides payments, each on a page of its own, and change it.
void openAccountsPage(AppWindow& window);
void openBudgetsPage(AppWindow& window);
void openRulesPage(AppWindow& window);
void openTemplatesPage(AppWindow& window);
void openHistoryPage(AppWindow& window);

}  // namespace kivo::app
