#include "platform/linux/app_intents/installed_platform.h"

#include <string>

namespace kivo::linux_platform {
namespace {

platform::Task<void> performInto(platform::AppIntent& intent, platform::IntentDialog& dialog) {
  const platform::IntentResult result = co_await intent.perform();
  dialog = result.dialog;
}

}  // namespace

InstalledPlatform::InstalledPlatform(std::string_view bundleIdentifier)
    : notificationCenter_(bus_, std::string(bundleIdentifier)), widgetCenter_(bus_) {
  install();
}

InstalledPlatform::InstalledPlatform(std::string_view bundleIdentifier, SessionBus::Lent lent)
    : bus_(lent), notificationCenter_(bus_, std::string(bundleIdentifier)), widgetCenter_(bus_) {
  install();
}

void InstalledPlatform::install() {
  platform::ProcessWide<platform::URLSession>::install(session_);
  platform::ProcessWide<platform::UNUserNotificationCenter>::install(notificationCenter_);
  platform::ProcessWide<platform::WidgetCenter>::install(widgetCenter_);
}

platform::Task<void> InstalledPlatform::perform(platform::AppIntent& intent,
                                                platform::IntentDialog& dialog) {
  return bus_.asOneRun(performInto(intent, dialog));
}

platform::Task<void> InstalledPlatform::performOnly(platform::AppIntent& intent,
                                                    platform::IntentDialog& dialog) {
  struct End {
    SessionBus& bus;
    ~End() { bus.finish(); }
  };
  const End end{bus_};
  co_await perform(intent, dialog);
}

}  // namespace kivo::linux_platform
