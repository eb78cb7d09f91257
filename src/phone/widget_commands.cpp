#include "phone/widget_commands.h"

#include <optional>
#include <string>
#include <utility>

#include "phone/phone_terminal.h"
#include "phone/widget_view.h"
#include "phone/widget_watch.h"
#include "platform/linux/process/child_process.h"
#include "platform/linux/terminal/terminal_text.h"
#include "platform/linux/terminal/terminal_window.h"
#include "store/shared_store.h"

namespace kivo {
namespace {

using linux_platform::GivenParameters;
using Kind = linux_platform::CommandParameter::Kind;

// The scheme of the notifications' links; the desktop file names it as well.
constexpr const char* linkScheme = "kivo-expenses:";

std::string drawnWidget(const WidgetFigures& figures) {
  if (!onTerminal()) return WidgetView::asLines(figures);
  return WidgetView::asBox(
      figures, terminalShowsStyles() ? WidgetView::Figures::bold : WidgetView::Figures::plain);
}

int showWidget() {
  const auto store = SharedStore::open(appGroup);
  if (!store) return failWithoutStore();
  return print(drawnWidget(WidgetView::read(*store)));
}

// Redraws in place, or below where the terminal does not support that.
int watchWidget() {
  constexpr const char* clearScreen = "\x1b[H\x1b[2J";
  std::optional<WidgetFigures> drawn;
  return WidgetWatch::run([&drawn] {
    const auto store = SharedStore::open(appGroup);
    if (!store) return failWithoutStore() == 0;
    const WidgetFigures figures = WidgetView::read(*store);
    const bool changed = std::exchange(drawn, figures) != figures;
    if (!changed) return true;
    const std::string widget = drawnWidget(figures);
    if (!onTerminal()) return print(widget + "\n") == 0;
    return print((terminalObeysEscapes() ? clearScreen : "") + widget + "Ctrl-C ends\n") == 0;
  });
}

// Any program can open a link, so no part of it is passed on.
int openWidget(const GivenParameters& given) {
  const auto link = given.find("LINK");
  if (link != given.end() && !link->second.starts_with(linkScheme)) {
    return fail("invalid LINK \"" + linux_platform::escapedControls(link->second) +
                    "\": it must begin with " + linkScheme,
                linux_platform::exitBadUsage);
  }
  const std::string phone = (linux_platform::programFolder() / phoneProgramName).string();
  linux_platform::TerminalWindows windows;
  if (windows.open({phone, "widget", "--watch"}, linux_platform::WindowEnd::atSuccess)) return 0;
  return fail(linux_platform::noTerminalWindow);
}

}  // namespace

std::vector<linux_platform::Command> widgetCommands() {
  const auto widget = [](const GivenParameters& given) {
    return given.contains("--watch") ? watchWidget() : showWidget();
  };
  return {
      {"widget",
       "Show the figures of the home-screen widget",
       {{"--watch", "Go on showing them as they change", Kind::flag}},
       widget},
      {"open",
       "Open the widget in a terminal window",
       {{"LINK", "The link that was followed, kivo-expenses://", Kind::optional}},
       openWidget},
  };
}

}  // namespace kivo
