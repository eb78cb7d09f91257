// The process-wide objects of the platform, as a process that performs intents needs them. Performs
// none.
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

/// Installed from its making on; outlives every task that performs an intent. Its end sends what
/// has still to be sent on the bus.
class InstalledPlatform {
 public:
  /// Begins to connect to the session bus, on a thread that calls `beforehand` first, if any, and
  /// returns at once.
  explicit InstalledPlatform(std::string_view bundleIdentifier,
                             std::function<void()> beforehand = nullptr);

  /// Performs `intent` as a run of its own, and leaves in `dialog` what it answers. Both outlive
  /// the task.
  platform::Task<void> perform(platform::AppIntent& intent, platform::IntentDialog& dialog);

  /// Performs `run` as one run, as `SessionBus::asOneRun`.
  platform::Task<void> asOneRun(platform::Task<void> run);

 private:
  SessionBus bus_;
  HTTPURLSession exchanging_;
  RememberingURLSession session_{exchanging_};
  BusUserNotificationCenter notificationCenter_;
  BusWidgetCenter widgetCenter_;
};

}  // namespace kivo::linux_platform
