// Creates and installs the platform's process-wide objects for a process that performs intents.
#pragma once

#include <functional>
#include <string_view>

#include "platform/app_intents/app_intent.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/http/http_url_session.h"
#include "platform/linux/http/last_exchange.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "platform/linux/widget_kit/bus_widget_center.h"

namespace kivo::linux_platform {

/// The objects are installed by the constructor. Must outlive every task that performs an intent.
/// The destructor sends what is still unsent on the bus.
class InstalledPlatform {
 public:
  /// Starts to connect to the session bus on its own thread, which first calls `beforehand`, if
  /// any. Returns at once.
  explicit InstalledPlatform(std::string_view bundleIdentifier,
                             std::function<void()> beforehand = nullptr);

  /// Performs `intent` as a run and stores its dialog in `dialog`. Both must outlive the task.
  platform::Task<void> perform(platform::AppIntent& intent, platform::IntentDialog& dialog);

  /// Performs `run` as `SessionBus::asOneRun` does.
  platform::Task<void> asOneRun(platform::Task<void> run);

 private:
  SessionBus bus_;
  HTTPURLSession exchanging_;
  RememberingURLSession session_{exchanging_};
  BusUserNotificationCenter notificationCenter_;
  BusWidgetCenter widgetCenter_;
};

}  // namespace kivo::linux_platform
