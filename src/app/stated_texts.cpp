#include "app/stated_texts.h"

#include "app/signals.h"
#include "app/widgets.h"

namespace kivo::app {

GtkWidget* statedText(const char* title) {
  GtkWidget* row = adw_entry_row_new();
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(row), title);
  onSignal(row, "changed", [row] {
    gtk_widget_remove_css_class(row, "error");
    gtk_widget_set_tooltip_text(row, nullptr);
  });
  return row;
}

std::string statedIn(GtkWidget* row) {
  const std::string text = gtk_editable_get_text(GTK_EDITABLE(row));
  const auto first = text.find_first_not_of(" \t\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

void mark(GtkWidget* row, const char* why) {
  gtk_widget_add_css_class(row, "error");
  gtk_widget_set_tooltip_text(row, why);
  gtk_widget_grab_focus(row);
}

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

void addChoices(GtkWidget* row, const char* name, const std::vector<std::string>& choices) {
  constexpr int height = 320;
  GtkWidget* list = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  GtkWidget* scrolled = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), height);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), list);
  GtkWidget* popover = gtk_popover_new();
  gtk_popover_set_child(GTK_POPOVER(popover), scrolled);
  for (const std::string& choice : choices) {
    GtkWidget* button = textButton(shownName(choice).c_str(), [row, choice, popover] {
      gtk_editable_set_text(GTK_EDITABLE(row), choice.c_str());
      gtk_popover_popdown(GTK_POPOVER(popover));
    });
    gtk_widget_add_css_class(button, "flat");
    gtk_box_append(GTK_BOX(list), button);
  }
  addPopover(row, "view-list-symbolic", name, popover);
}

}  // namespace kivo::app
