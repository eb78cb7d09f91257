#include "platform/linux/app_intents/ns_extension_main.h"

#include <cstdio>
#include <utility>
#include <variant>

#include "platform/foundation/json_encoder.h"
#include "platform/foundation/standard_output.h"
#include "platform/linux/app_intents/perform_call.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/http_url_session.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/process/session_bus.h"
#include "platform/linux/process/terminal_text.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "platform/linux/widget_kit/bus_widget_center.h"

namespace kivo::linux_platform {
namespace {

using platform::AppIntent;
using platform::IntentDialog;
using platform::Task;

// One run needs one worker: its steps come one after the other, and it never blocks for long.
constexpr unsigned workers = 1;

Task<void> performInto(AppIntent& intent, IntentDialog& dialog) {
  const platform::IntentResult result = co_await intent.perform();
  dialog = result.dialog;
}

IntentDialog perform(AppIntent& intent, std::string_view bundleIdentifier) {
  SessionBus bus;
  HTTPURLSession session;
  BusUserNotificationCenter notificationCenter(bus, std::string(bundleIdentifier));
  BusWidgetCenter widgetCenter(bus);
  platform::ProcessWide<platform::URLSession>::install(session);
  platform::ProcessWide<platform::UNUserNotificationCenter>::install(notificationCenter);
  platform::ProcessWide<platform::WidgetCenter>::install(widgetCenter);

  TaskExecutor executor(workers);
  IntentDialog dialog;
  executor.startUntilTermination(performInto(intent, dialog)).wait();
  return dialog;
}

void print(const IntentDialog& dialog, DialogForm form) {
  if (form == DialogForm::json) {
    platform::JSONEncoder object;
    object.encodeString("dialog", dialog.text);
    platform::printLine(object.text());
  } else {
    platform::printLine(forStandardOutput(dialog.text));
  }
}

}  // namespace

int NSExtensionMain(int argc, char** argv, const platform::AppIntentsExtension& extension,
                    std::string_view bundleIdentifier) {
  startProcess();
  auto call = readCommandLine(argc, argv, extension);
  if (const auto* const end = std::get_if<EarlyEnd>(&call)) {
    std::fputs(end->output.c_str(), stdout);
    if (!end->error.empty()) std::fputs((end->error + "\n").c_str(), stderr);
    return end->exitStatus;
  }

  auto& [intent, form] = std::get<PerformCall>(call);
  print(perform(*intent, bundleIdentifier), form);
  return 0;
}

}  // namespace kivo::linux_platform
