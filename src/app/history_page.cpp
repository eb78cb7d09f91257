#include <cstdint>
#include <string>
#include <vector>

#include "app/app_window.h"
#include "app/more_page.h"
#include "app/pushed_list.h"
#include "app/widgets.h"
#include "platform/foundation/date_formatter.h"

namespace kivo::app {

using book::PastCommand;

namespace {

// More would take long to lay out.
constexpr std::size_t mostShown = 100;

std::string timeOf(const PastCommand& command) {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd HH:mm",
                                          .locale = "en_US_POSIX"};
  return formatter.string(command.moment);
}

// The last command is taken back at once, an earlier one with all later ones after a question.
GtkWidget* commandRow(AppWindow& window, const PastCommand& command, std::int64_t count) {
  const std::string words = shownName(command.words);
  GtkWidget* undo = textButton("Undo", [&window, number = command.number, count] {
    if (count == 1) return window.undoSince(number);
    window.ask("Undo " + std::to_string(count) + " changes?",
               "This one and all that came after it are taken back.", "Undo Them",
               [&window, number] { window.undoSince(number); });
  });
  nameFor(undo, "Undo: " + words);
  gtk_widget_set_valign(undo, GTK_ALIGN_CENTER);
  return plainRow(words, timeOf(command), undo);
}

}  // namespace

void openHistoryPage(AppWindow& window) {
  pushList(window, "History", [&window](GtkWidget* box) {
    std::vector<PastCommand> commands;
    window.read([&](const book::Book& book) { commands = book.history(); });
    if (commands.empty()) {
      gtk_box_append(GTK_BOX(box),
                     statusPage("document-open-recent-symbolic", "Nothing Was Changed",
                                "Changes of the last 30 days are listed here."));
      return;
    }
    GtkWidget* group = rowGroup("");
    std::int64_t count = 0;
    for (const PastCommand& command : commands) {
      if (static_cast<std::size_t>(++count) > mostShown) break;
      adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), commandRow(window, command, count));
    }
    gtk_box_append(GTK_BOX(box), group);
  });
}

}  // namespace kivo::app
