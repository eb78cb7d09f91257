// A page of its own whose content is made again after each change of the book.
#pragma once

#include <functional>
#include <string>

#include <gtk/gtk.h>

namespace kivo::app {

class AppWindow;

/// Shows a page called `title`, whose box `fill` fills: at once, and again, emptied, after each
/// change of the book. `fill` reads the book by the window, and throws nothing.
void pushList(AppWindow& window, const std::string& title, std::function<void(GtkWidget*)> fill);

}  // namespace kivo::app
