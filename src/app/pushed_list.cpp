#include "app/pushed_list.h"

#include <utility>

#include "app/app_window.h"
#include "app/widgets.h"

namespace kivo::app {

void pushList(AppWindow& window, const std::string& title, std::function<void(GtkWidget*)> fill) {
  constexpr int gap = 18;
  GtkWidget* box = withMargins(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap), 12);
  fill(box);
  window.push(title, scrolledColumn(box), nullptr, [box, fill = std::move(fill)] {
    clearBox(box);
    fill(box);
  });
}

}  // namespace kivo::app
