// Rows in which a person types a text.
#pragma once

#include <string>
#include <vector>

#include <adwaita.h>

namespace kivo::app {

/// Returns a row to type in, called `title`. Typing removes its mark.
GtkWidget* statedText(const char* title);
/// Returns the text of such a row without the blanks around it.
std::string statedIn(GtkWidget* row);
/// Marks a row whose text cannot be, says why, and sets the cursor into it.
void mark(GtkWidget* row, const char* why);

/// Adds a button to `row` that is named `name` and shows `popover`.
void addPopover(GtkWidget* row, const char* icon, const char* name, GtkWidget* popover);
/// Adds a button that shows `choices`, of which one becomes the text of `row`.
void addChoices(GtkWidget* row, const char* name, const std::vector<std::string>& choices);

}  // namespace kivo::app
