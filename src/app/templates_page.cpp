#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/more_page.h"
#include "app/pushed_list.h"
#include "app/widgets.h"
#include "platform/linux/foundation/failure.h"
#include "recording/template_file.h"

namespace kivo::app {

using recognition::MessageTemplate;

namespace {

// What a message that fits becomes.
std::string readAs(const MessageTemplate& taught) {
  if (!taught.kind) return "no payment";
  std::string words = kindText(*taught.kind);
  if (taught.currency) words += ", in " + taught.currency->text();
  if (!taught.description.empty()) words += ", called " + shownName(taught.description);
  if (!taught.category.empty()) words += ", " + shownName(taught.category);
  return words;
}

GtkWidget* templateGroup(const std::vector<MessageTemplate>& templates) {
  GtkWidget* group = rowGroup("Messages that were taught");
  for (const MessageTemplate& taught : templates) {
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group),
                              plainRow(shownName(taught.text), readAs(taught), nullptr));
  }
  return group;
}

}  // namespace

void openTemplatesPage(AppWindow& window) {
  pushList(window, "Templates", [&window](GtkWidget* box) {
    const auto add = [box](const std::string& text) {
      gtk_box_append(GTK_BOX(box), textLabel(text, "dim-label"));
    };
    try {
      const auto templates = recording::TemplateFile::read();
      if (templates.empty()) {
        return add("There is none. Teach, on a payment's page, makes one of its message.");
      }
      gtk_box_append(GTK_BOX(box), templateGroup(templates));
    } catch (const linux_platform::Failure& failure) {
      return add(failure.what());
    }
    add("The last one that fits a message decides.");
    gtk_box_append(GTK_BOX(box), textButton("Take One Back in the History",
                                            [&window] { openHistoryPage(window); }));
  });
}

}  // namespace kivo::app
