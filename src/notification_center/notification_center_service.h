// Serves the notification center on the session bus, and shows notifications on the desktop.
// NotificationCenter makes the decisions.
#pragma once

#include <functional>
#include <memory>

#include "notification_center/notification_center.h"

namespace kivo {

/// Not thread-safe, except for `stop`.
class NotificationCenterService {
 public:
  /// Connects to the session bus and takes the center's bus name, so that no second center can
  /// start. Calls wait until `serve`. Throws Failure when there is no bus or another program owns
  /// the name.
  NotificationCenterService();
  ~NotificationCenterService();
  NotificationCenterService(const NotificationCenterService&) = delete;
  NotificationCenterService& operator=(const NotificationCenterService&) = delete;

  /// As `DesktopNotifications::show`. Call it only from within `serve`.
  void show(const platform::UNMutableNotificationContent& content,
            std::function<void(ShowOutcome)> done);

  /// Handles calls with `center`, and has it show what is due, until `stop` is called or the bus is
  /// gone. `center` must outlive this object, whose destruction drops unfinished calls to the
  /// desktop.
  void serve(NotificationCenter& center);

  /// Ends `serve`. Thread-safe and async-signal-safe.
  void stop() noexcept;

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace kivo
