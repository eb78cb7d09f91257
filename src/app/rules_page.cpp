#include <optional>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/more_page.h"
#include "app/pushed_list.h"
#include "app/signals.h"
#include "app/stated_texts.h"
#include "app/widgets.h"
#include "platform/linux/foundation/failure.h"
#include "recording/rule_sentence.h"

namespace kivo::app {

using book::Rule;
using linux_platform::Failure;

namespace {

void removeRule(AppWindow& window, std::int64_t number) {
  window.change("rules remove " + std::to_string(number), "Removed", [&](book::Book& book) {
    if (!book.removeRule(number)) throw Failure("it was removed meanwhile");
  });
}

void addRule(AppWindow& window, const std::string& payee, const book::RuleMembers& members) {
  std::string words = "rules add --payee " + book::commandWord(payee);
  if (members.description) words += " --description " + book::commandWord(*members.description);
  if (members.category) words += " --category " + book::commandWord(*members.category);
  window.change(words, "Later payments follow it", [&](book::Book& book) {
    if (book.keepRule(payee, members)) return;
    throw Failure("a name is needed, or a part of one with * for any characters");
  });
}

GtkWidget* ruleRow(AppWindow& window, const Rule& rule) {
  const std::string payee = shownName(rule.payee);
  const std::string name = "Remove the rule for " + payee;
  GtkWidget* remove = iconButton("user-trash-symbolic", name.c_str(),
                                 [&window, number = rule.number] { removeRule(window, number); });
  gtk_widget_set_valign(remove, GTK_ALIGN_CENTER);
  gtk_widget_add_css_class(remove, "flat");
  return plainRow(payee, shownName(recording::madeOf(rule.members)), remove);
}

GtkWidget* newRule(AppWindow& window) {
  std::vector<std::string> categories;
  window.read([&](const book::Book& book) { categories = book.categories(); });
  GtkWidget* group = rowGroup("A new rule");
  GtkWidget* payee = statedText("Payee; * stands for any characters");
  GtkWidget* description = statedText("Is called");
  GtkWidget* category = statedText("Category");
  addChoices(category, "Pick a category", categories);
  for (GtkWidget* row : {payee, description, category}) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }
  GtkWidget* add = textButton("Add", [&window, payee, description, category] {
    const auto given = [](GtkWidget* row) {
      const std::string text = statedIn(row);
      return text.empty() ? std::nullopt : std::optional(text);
    };
    const book::RuleMembers members{.description = given(description), .category = given(category)};
    if (statedIn(payee).empty()) return mark(payee, "Give the shop or the person");
    if (members.empty()) return mark(category, "Give a category, or how it is called");
    addRule(window, statedIn(payee), members);
  });
  gtk_widget_set_halign(add, GTK_ALIGN_END);
  gtk_widget_set_margin_top(add, 12);
  adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), add);
  return group;
}

}  // namespace

void openRulesPage(AppWindow& window) {
  pushList(window, "Rules", [&window](GtkWidget* box) {
    std::vector<Rule> rules;
    window.read([&](const book::Book& book) { rules = book.rules(); });
    if (rules.empty()) {
      gtk_box_append(GTK_BOX(box),
                     textLabel("There is no rule. Correcting a payment makes one.", "dim-label"));
    } else {
      GtkWidget* group = rowGroup("Later payments to");
      for (const Rule& rule : rules) {
        adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), ruleRow(window, rule));
      }
      gtk_box_append(GTK_BOX(box), group);
    }
    gtk_box_append(GTK_BOX(box), newRule(window));
  });
}

}  // namespace kivo::app
