#include "app/shown_page.h"

#include <utility>

#include "app/signals.h"

namespace kivo::app {

ShownPage::ShownPage(GtkWidget* page, std::function<void()> read)
    : page_(page), read_(std::move(read)) {
  onSignal(page, "map", [this] {
    if (std::exchange(isOutdated_, false)) read_();
  });
}

void ShownPage::refresh() {
  isOutdated_ = gtk_widget_get_mapped(page_) == FALSE;
  if (!isOutdated_) read_();
}

}  // namespace kivo::app
