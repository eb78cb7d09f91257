#include "phone/widget_commands.h"

#include <chrono>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "feedback/deep_link.h"
#include "phone/ledger_month.h"
#include "phone/local_ledger.h"
#include "phone/phone_store.h"
#include "phone/widget_view.h"
#include "phone/widget_watch.h"
#include "platform/linux/process/child_process.h"
#include "platform/linux/process/detached_programs.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/terminal_window.h"

namespace kivo {
namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::onTerminal;
using linux_platform::print;
using Kind = linux_platform::CommandParameter::Kind;

// The scheme of the notifications' links; the desktop file names it as well.
constexpr const char* linkScheme = "kivo-expenses:";

// A window that cannot be shown has ended by then.
constexpr std::chrono::seconds windowTimeout(2);

// kivo-ledger writes the page and waits a few seconds for xdg-open.
constexpr std::chrono::seconds reportTimeout(30);

std::string drawnWidget(const WidgetFigures& figures) {
  if (!onTerminal()) return WidgetView::asLines(figures);
  return WidgetView::asBox(figures, linux_platform::terminalShowsStyles()
                                        ? WidgetView::Figures::bold
                                        : WidgetView::Figures::plain);
}

void showWidget() {
  const SharedStore store = openStore();
  WidgetFigures figures = WidgetView::read(store);
  if (LocalLedger::isSignedIn(store)) WidgetView::takeFromBook(figures, LedgerMonth::ask());
  print(drawnWidget(figures));
}

// The ledger's figures while the widget is watched. Corrections of the book send no reload signal.
class WatchedLedger {
 public:
  // Completes the figures of `store` where the ledger on this machine has them.
  void complete(WidgetFigures& figures, const SharedStore& store, WidgetWatch::Cause cause) {
    if (!LocalLedger::isSignedIn(store)) {
      asked_.reset();
      return;
    }
    if (cause == WidgetWatch::Cause::reload || !asked_ || Clock::now() - *asked_ >= askInterval) {
      month_ = LedgerMonth::ask();
      asked_ = Clock::now();
    }
    WidgetView::takeFromBook(figures, month_);
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds askInterval{10};

  std::optional<LedgerMonth> month_;
  std::optional<Clock::time_point> asked_;
};

// Redraws in place, or below where the terminal does not support that.
void watchWidget() {
  constexpr const char* clearScreen = "\x1b[H\x1b[2J";
  std::optional<WidgetFigures> drawn;
  WatchedLedger ledger;
  WidgetWatch::run([&](WidgetWatch::Cause cause) {
    const SharedStore store = openStore();
    WidgetFigures figures = WidgetView::read(store);
    ledger.complete(figures, store, cause);
    const bool changed = std::exchange(drawn, figures) != figures;
    if (!changed) return;
    const std::string widget = drawnWidget(figures);
    if (!onTerminal()) return print(widget + "\n");
    const bool clears = linux_platform::terminalObeysEscapes();
    print((clears ? clearScreen : "") + widget + "Ctrl-C ends\n");
  });
}

bool keepsBook() {
  const auto store = SharedStore::open(appGroup);
  return store && LocalLedger::isSignedIn(*store);
}

// Whether the window on the book is there: a package of its own brings it, and it needs a display.
bool openWindow(std::optional<std::int64_t> payment) {
  const std::string app = (linux_platform::programFolder() / "kivo").string();
  if (!linux_platform::programFile(app)) return false;
  const std::string link = payment ? DeepLink::toPayment(*payment) : DeepLink::app;
  return linux_platform::DetachedPrograms().startAndWait({app, link}, windowTimeout) == 0;
}

// Whether the ledger's report is on its way to a browser.
bool openReport() {
  try {
    const auto result = linux_platform::runProgram(
        {.program = LocalLedger::program(), .arguments = {"report"}}, reportTimeout);
    std::cerr << result.errors;
    return result.status == 0;
  } catch (const std::system_error&) {  // the program cannot be started
    return false;
  }
}

// Any program can open a link, so only the number of a payment is passed on, to be shown.
void openKivo(const GivenParameters& given) {
  const auto link = given.find("LINK");
  if (link != given.end() && !link->second.starts_with(linkScheme)) {
    throw BadUsage("invalid LINK \"" + link->second + "\": it must begin with " + linkScheme);
  }
  const auto payment = link == given.end() ? std::nullopt : DeepLink::payment(link->second);
  if (keepsBook() && (openWindow(payment) || openReport())) return;
  const std::string phone = (linux_platform::programFolder() / "kivo-phone").string();
  linux_platform::TerminalWindows windows;
  if (windows.open({phone, "widget", "--watch"}, linux_platform::WindowEnd::atSuccess)) return;
  throw CommandFailure(linux_platform::noTerminalWindow);
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
       "Open the window on the book, or the report in a browser, or else the widget",
       {{"LINK", "The link that was followed, kivo-expenses://", Kind::optional}},
       openKivo},
  };
}

}  // namespace kivo
