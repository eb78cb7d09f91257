#include <optional>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/more_page.h"
#include "app/pushed_list.h"
#include "app/signals.h"
#include "app/stated_texts.h"
#include "app/sum_texts.h"
#include "app/widgets.h"
#include "book/current_day.h"
#include "overview/account_figures.h"
#include "overview/gap_words.h"

namespace kivo::app {

using book::Account;
using overview::AccountFigures;

namespace {

const char* balanceName(AccountFigures::Balance kind) {
  if (kind == AccountFigures::Balance::limit) return "May still be spent";
  return kind == AccountFigures::Balance::debt ? "Owed" : "Balance";
}

// What the book keeps of an account; of one without name and mark, its digits alone.
Account keptAccount(const book::Book& book, const std::string& digits) {
  for (const Account& account : book.accounts()) {
    if (account.digits == digits) return account;
  }
  return {.digits = digits};
}

void rename(AppWindow& window, const std::string& digits, const std::string& name) {
  const bool isNumber = !name.empty() && name.find_first_not_of("0123456789 ") == std::string::npos;
  if (isNumber || name == book::cashAccount) {
    return window.tellFailure("Not Named", "Give a name with a letter, other than Cash.");
  }
  const std::string words = "accounts name " + digits + " " + book::commandWord(name);
  window.change(words, "Named", [&](book::Book& book) {
    Account account = keptAccount(book, digits);
    account.name = name;
    book.keepAccount(account);
  });
}

void markCredit(AppWindow& window, const std::string& digits, bool isCredit) {
  const std::string words = "accounts credit " + digits + (isCredit ? "" : " --off");
  window.change(words, isCredit ? "Marked as a credit card" : "Its balance is money",
                [&](book::Book& book) {
                  Account account = keptAccount(book, digits);
                  account.isCredit = isCredit;
                  book.keepAccount(account);
                });
}

GtkWidget* nameRow(AppWindow& window, const AccountFigures& figures) {
  GtkWidget* row = statedText(("Name of " + shownName(figures.account)).c_str());
  gtk_editable_set_text(GTK_EDITABLE(row), figures.name.c_str());
  const auto apply = [&window, row, digits = figures.account] {
    rename(window, digits, statedIn(row));
  };
  onSignal(row, "entry-activated", apply);
  const std::string name = "Give " + shownName(figures.account) + " this name";
  GtkWidget* button = iconButton("object-select-symbolic", name.c_str(), apply);
  gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
  gtk_widget_add_css_class(button, "flat");
  adw_entry_row_add_suffix(ADW_ENTRY_ROW(row), button);
  return row;
}

GtkWidget* creditRow(AppWindow& window, const AccountFigures& figures) {
  GtkWidget* mark = gtk_switch_new();
  gtk_switch_set_active(GTK_SWITCH(mark),
                        figures.kind != AccountFigures::Balance::money ? TRUE : FALSE);
  gtk_widget_set_valign(mark, GTK_ALIGN_CENTER);
  nameFor(mark, shownName(figures.account) + " is a credit card");
  onSignal(mark, "notify::active", [&window, mark, digits = figures.account] {
    markCredit(window, digits, gtk_switch_get_active(GTK_SWITCH(mark)) != FALSE);
  });
  GtkWidget* row = plainRow("Credit card", "Its balance is a limit or a debt", mark);
  adw_action_row_set_activatable_widget(ADW_ACTION_ROW(row), mark);
  return row;
}

GtkWidget* accountGroup(AppWindow& window, const AccountFigures& figures, SumTexts& sums) {
  const money::Day today = book::currentDay();
  const std::string title = shownName(figures.name.empty() ? figures.account : figures.name) + " " +
                            figures.currency.text();
  char* plain = g_markup_escape_text(title.c_str(), -1);
  GtkWidget* group = rowGroup(plain);
  g_free(plain);
  const auto add = [group](GtkWidget* row) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  };
  if (figures.balance && figures.balanceDate) {
    const std::string day = "on " + overview::dayWords(*figures.balanceDate, today);
    add(plainRow(balanceName(figures.kind), day,
                 gtk_label_new(sums.text(*figures.balance).c_str())));
  }
  for (auto gap = figures.gaps.rbegin(); gap != figures.gaps.rend(); ++gap) {
    add(plainRow(overview::gapWords(*gap, figures.currency, today), "",
                 gtk_image_new_from_icon_name("dialog-warning-symbolic")));
  }
  add(plainRow("Its payments", shownName(figures.account),
               textButton("Show", [&window, digits = figures.account] {
                 window.showPayments({.account = digits});
               })));
  if (figures.account == book::cashAccount) return group;
  add(nameRow(window, figures));
  add(creditRow(window, figures));
  return group;
}

}  // namespace

void openAccountsPage(AppWindow& window) {
  pushList(window, "Accounts", [&window](GtkWidget* box) {
    std::vector<AccountFigures> accounts;
    window.read([&](const book::Book& book) {
      accounts = overview::accountFigures(book.accountEntries(), book.accounts());
    });
    SumTexts sums;
    for (const AccountFigures& figures : accounts) {
      gtk_box_append(GTK_BOX(box), accountGroup(window, figures, sums));
    }
    if (!accounts.empty()) return;
    gtk_box_append(GTK_BOX(box),
                   statusPage("view-list-symbolic", "No Account Is Known",
                              "An account is made of the digits that your bank's messages show."));
  });
}

}  // namespace kivo::app
