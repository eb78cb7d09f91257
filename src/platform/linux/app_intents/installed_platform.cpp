#include "platform/linux/app_intents/installed_platform.h"

#include <string>

namespace kivo::linux_platform {

InstalledPlatform::InstalledPlatform(std::string_view bundleIdentifier)
    : notificationCenter_(bus_, std::string(bundleIdentifier)), widgetCenter_(bus_) {
  platform::ProcessWide<platform::URLSession>::install(session_);
  platform::ProcessWide<platform::UNUserNotificationCenter>::install(notificationCenter_);
  platform::ProcessWide<platform::WidgetCenter>::install(widgetCenter_);
}

}  // namespace kivo::linux_platform
