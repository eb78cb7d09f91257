// Reads a page again only while it is shown.
#pragma once

#include <functional>

#include <gtk/gtk.h>

namespace kivo::app {

/// Has a page read when it is shown for the first time, and again after changes.
class ShownPage {
 public:
  /// `read` fills `page`, and throws nothing. This object lives as long as `page` sends signals.
  ShownPage(GtkWidget* page, std::function<void()> read);

  /// Reads the page now if it is shown, else when it is shown next.
  void refresh();

 private:
  GtkWidget* page_;
  std::function<void()> read_;
  bool isOutdated_ = true;
};

}  // namespace kivo::app
