// Widgets that several pages show.
#pragma once

#include <functional>
#include <string>

#include <adwaita.h>

namespace kivo::app {

/// Returns `text`, valid UTF-8 of any origin, as it may be shown on one line: control characters
/// are escaped, and at most 200 characters stay.
std::string shownName(const std::string& text);

/// Returns a label that shows `text` as it is, aligned at the start, with the style class `style`
/// unless that is null. It is cut where the room ends.
GtkWidget* lineLabel(const std::string& text, const char* style = nullptr);
/// Returns a label that folds `text` into lines.
GtkWidget* textLabel(const std::string& text, const char* style = nullptr);

/// Names `widget` for assistive technology.
void nameFor(GtkWidget* widget, const std::string& name);

/// Returns a button that shows the icon `icon` and is named `name`, also by its tooltip.
GtkWidget* iconButton(const char* icon, const char* name, std::function<void()> clicked);
/// Returns a button with the text `label`.
GtkWidget* textButton(const char* label, std::function<void()> clicked);

/// Returns a row with a title, a second line, which may be empty, and `suffix`, which may be null.
/// Neither text is markup. With `activated` it is a row to tap.
GtkWidget* plainRow(const std::string& title, const std::string& subtitle, GtkWidget* suffix,
                    std::function<void()> activated = {});

/// Returns a group of rows with a heading.
GtkWidget* rowGroup(const char* heading);

/// Returns `content` in a column that scrolls and grows no wider than a text is read.
GtkWidget* scrolledColumn(GtkWidget* content);

/// Returns a page that says `title` and, below, `text`, for example where there is nothing yet.
GtkWidget* statusPage(const char* icon, const char* title, const std::string& text);

/// Gives `widget` a margin of so many pixels on each side, and returns it.
GtkWidget* withMargins(GtkWidget* widget, int pixels);

/// Removes all children of `box`.
void clearBox(GtkWidget* box);

}  // namespace kivo::app
