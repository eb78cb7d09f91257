#include "app/bars.h"

#include <algorithm>
#include <utility>

#include "app/signals.h"
#include "app/widgets.h"
#include "overview/recurring_payments.h"

namespace kivo::app {

using money::Money;

namespace {

constexpr int chartHeight = 96;
constexpr double barShare = 0.7;  // of the room for a day

double shareOf(const Money& part, const Money& whole) {
  if (part.minorUnits <= 0 || whole.minorUnits <= 0) return 0;
  const double share = static_cast<double>(part.minorUnits) / static_cast<double>(whole.minorUnits);
  return std::min(share, 1.0);
}

// The part of the height that each bar has.
using Heights = std::vector<double>;

void drawBars(GtkDrawingArea* area, cairo_t* cairo, int width, int height, gpointer data) {
  const Heights& heights = *static_cast<const Heights*>(data);
  GtkStyleContext* style = gtk_widget_get_style_context(GTK_WIDGET(area));
  GdkRGBA colour;
  if (gtk_style_context_lookup_color(style, "accent_color", &colour) == FALSE) {
    gtk_style_context_get_color(style, &colour);
  }
  gdk_cairo_set_source_rgba(cairo, &colour);
  const double room = static_cast<double>(width) / static_cast<double>(heights.size());
  const bool isMirrored = gtk_widget_get_direction(GTK_WIDGET(area)) == GTK_TEXT_DIR_RTL;
  for (std::size_t at = 0; at < heights.size(); ++at) {
    if (heights[at] <= 0) continue;
    const auto place = static_cast<double>(isMirrored ? heights.size() - 1 - at : at);
    const double tall = std::max(1.0, heights[at] * height);
    cairo_rectangle(cairo, room * (place + (1 - barShare) / 2), height - tall, room * barShare,
                    tall);
  }
  cairo_fill(cairo);
}

GtkWidget* rowButton(GtkWidget* content, const std::string& name, std::function<void()> clicked) {
  GtkWidget* button = gtk_button_new();
  gtk_button_set_child(GTK_BUTTON(button), content);
  gtk_widget_add_css_class(button, "flat");
  gtk_widget_add_css_class(button, "kivo-row");
  nameFor(button, name);
  onSignal(button, "clicked", std::move(clicked));
  return button;
}

}  // namespace

GtkWidget* shareBar(const Money& part, const Money& whole, Bar bar) {
  GtkWidget* shown = gtk_progress_bar_new();
  gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(shown), shareOf(part, whole));
  gtk_widget_add_css_class(shown, bar == Bar::over ? "kivo-over" : "kivo-share");
  gtk_accessible_update_state(GTK_ACCESSIBLE(shown), GTK_ACCESSIBLE_STATE_HIDDEN, TRUE, -1);
  return shown;
}

GtkWidget* barRow(const std::string& title, const std::string& figure, const std::string& detail,
                  GtkWidget* bar, std::function<void()> clicked) {
  GtkWidget* head = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
  GtkWidget* name = lineLabel(title);
  gtk_widget_set_hexpand(name, TRUE);
  gtk_box_append(GTK_BOX(head), name);
  gtk_box_append(GTK_BOX(head), gtk_label_new(figure.c_str()));
  GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_box_append(GTK_BOX(content), head);
  gtk_box_append(GTK_BOX(content), bar);
  GtkWidget* second = textLabel(detail, "caption");
  gtk_widget_add_css_class(second, "dim-label");
  gtk_box_append(GTK_BOX(content), second);
  const std::string text = title + ", " + figure + ", " + detail;
  GtkWidget* row = adw_preferences_row_new();
  gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(row), FALSE);
  // A row without a button still is a stop of the keyboard, where it is read aloud.
  if (clicked) gtk_widget_set_focusable(row, FALSE);
  gtk_list_box_row_set_child(
      GTK_LIST_BOX_ROW(row),
      clicked ? rowButton(content, text, std::move(clicked)) : withMargins(content, 10));
  nameFor(row, text);
  return row;
}

GtkWidget* dayChart(const std::vector<Money>& days, const money::Month& month, SumTexts& sums) {
  const auto less = [](const Money& one, const Money& other) {
    return one.minorUnits < other.minorUnits;
  };
  const auto largest = std::max_element(days.begin(), days.end(), less);
  auto* heights = new Heights;
  for (const Money& day : days) heights->push_back(shareOf(day, *largest));
  GtkWidget* area = gtk_drawing_area_new();
  gtk_drawing_area_set_content_height(GTK_DRAWING_AREA(area), chartHeight);
  const auto destroy = +[](gpointer data) noexcept { delete static_cast<Heights*>(data); };
  gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(area), drawBars, heights, destroy);
  const std::string text = "Expenses of each day of " + month.name() + "; most on the " +
                           overview::ordinal(static_cast<int>(largest - days.begin()) + 1) + ": " +
                           sums.text(*largest);
  nameFor(area, text);
  gtk_widget_set_tooltip_text(area, text.c_str());
  gtk_widget_set_margin_bottom(area, 12);
  return area;
}

}  // namespace kivo::app
