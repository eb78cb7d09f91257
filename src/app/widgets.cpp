#include "app/widgets.h"

#include <cstddef>
#include <utility>

#include "app/signals.h"
#include "platform/linux/foundation/safe_text.h"

namespace kivo::app {

std::string shownName(const std::string& text) {
  constexpr glong longest = 200;
  std::string shown = linux_platform::escapedControls(text);
  if (g_utf8_strlen(shown.c_str(), -1) <= longest) return shown;
  const char* end = g_utf8_offset_to_pointer(shown.c_str(), longest - 1);
  shown.resize(static_cast<std::size_t>(end - shown.c_str()));
  return shown + "…";
}

GtkWidget* lineLabel(const std::string& text, const char* style) {
  GtkWidget* label = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
  if (style != nullptr) gtk_widget_add_css_class(label, style);
  return label;
}

GtkWidget* textLabel(const std::string& text, const char* style) {
  GtkWidget* label = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  if (style != nullptr) gtk_widget_add_css_class(label, style);
  return label;
}

void nameFor(GtkWidget* widget, const std::string& name) {
  gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL,
                                 name.c_str(), -1);
}

GtkWidget* iconButton(const char* icon, const char* name, std::function<void()> clicked) {
  GtkWidget* button = gtk_button_new_from_icon_name(icon);
  gtk_widget_set_tooltip_text(button, name);
  nameFor(button, name);
  onSignal(button, "clicked", std::move(clicked));
  return button;
}

GtkWidget* textButton(const char* label, std::function<void()> clicked) {
  GtkWidget* button = gtk_button_new_with_label(label);
  onSignal(button, "clicked", std::move(clicked));
  return button;
}

GtkWidget* plainRow(const std::string& title, const std::string& subtitle, GtkWidget* suffix,
                    std::function<void()> activated) {
  GtkWidget* row = adw_action_row_new();
  adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(row), FALSE);
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(row), title.c_str());
  adw_action_row_set_subtitle(ADW_ACTION_ROW(row), subtitle.c_str());
  adw_action_row_set_title_lines(ADW_ACTION_ROW(row), 2);
  adw_action_row_set_subtitle_lines(ADW_ACTION_ROW(row), 2);
  if (suffix != nullptr) adw_action_row_add_suffix(ADW_ACTION_ROW(row), suffix);
  if (activated) {
    gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(row), TRUE);
    onSignal(row, "activated", std::move(activated));
  }
  return row;
}

GtkWidget* rowGroup(const char* heading) {
  GtkWidget* group = adw_preferences_group_new();
  adw_preferences_group_set_title(ADW_PREFERENCES_GROUP(group), heading);
  return group;
}

GtkWidget* scrolledColumn(GtkWidget* content) {
  GtkWidget* clamp = adw_clamp_new();
  adw_clamp_set_maximum_size(ADW_CLAMP(clamp), 720);
  adw_clamp_set_child(ADW_CLAMP(clamp), content);
  GtkWidget* scrolled = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), clamp);
  gtk_widget_set_vexpand(scrolled, TRUE);
  return scrolled;
}

GtkWidget* statusPage(const char* icon, const char* title, const std::string& text) {
  GtkWidget* page = adw_status_page_new();
  adw_status_page_set_icon_name(ADW_STATUS_PAGE(page), icon);
  adw_status_page_set_title(ADW_STATUS_PAGE(page), title);
  char* plain = g_markup_escape_text(text.c_str(), -1);
  adw_status_page_set_description(ADW_STATUS_PAGE(page), plain);
  g_free(plain);
  gtk_widget_set_vexpand(page, TRUE);
  return page;
}

GtkWidget* withMargins(GtkWidget* widget, int pixels) {
  gtk_widget_set_margin_start(widget, pixels);
  gtk_widget_set_margin_end(widget, pixels);
  gtk_widget_set_margin_top(widget, pixels);
  gtk_widget_set_margin_bottom(widget, pixels);
  return widget;
}

void clearBox(GtkWidget* box) {
  while (GtkWidget* child = gtk_widget_get_first_child(box)) gtk_box_remove(GTK_BOX(box), child);
}

}  // namespace kivo::app
