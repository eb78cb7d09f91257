#include "platform/linux/app_intents/installed_platform.h"

#include <string>
#include <utility>

namespace kivo::linux_platform {
namespace {

platform::Task<void> performInto(platform::AppIntent& intent, platform::IntentDialog& dialog) {
  const platform::IntentResult result = co_await intent.perform();
  dialog = result.dialog;
}

}  // namespace

InstalledPlatform::InstalledPlatform(std::string_view bundleIdentifier,
                                     std::function<void()> beforehand)
    : bus_(SessionBus::usualTimeout, std::move(beforehand)),
      notificationCenter_(bus_, std::string(bundleIdentifier)),
      widgetCenter_(bus_) {
  platform::ProcessWide<platform::URLSession>::install(session_);
  platform::ProcessWide<platform::UNUserNotificationCenter>::install(notificationCenter_);
  platform::ProcessWide<platform::WidgetCenter>::install(widgetCenter_);
}

platform::Task<void> InstalledPlatform::perform(platform::AppIntent& intent,
                                                platform::IntentDialog& dialog) {
  return asOneRun(performInto(intent, dialog));
}

platform::Task<void> InstalledPlatform::asOneRun(platform::Task<void> run) {
  return bus_.asOneRun(std::move(run));
}

}  // namespace kivo::linux_platform
