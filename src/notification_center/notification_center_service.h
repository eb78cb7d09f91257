// Serves the notification center on the session bus, and shows notifications on the desktop.
// NotificationCenter makes the decisions.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "notification_center/desktop_notifications.h"
#include "platform/user_notifications/un_notification_request.h"

namespace kivo {

/// The outcome of `add`.
enum class AddOutcome {
  /// Written to disk.
  kept,
  /// The user has denied notifications of this bundle.
  denied,
  /// The waiting requests are too large already.
  noRoom,
  /// Writing it to disk failed.
  notKept,
};

/// Handles the calls from the bus. Texts are valid UTF-8 without NUL.
class NotificationCenterCalls {
 public:
  virtual ~NotificationCenterCalls() = default;
  virtual platform::UNAuthorizationStatus authorizationStatus(const std::string& bundle) = 0;
  /// Returns false when the status could not be written.
  virtual bool setAuthorizationStatus(const std::string& bundle,
                                      platform::UNAuthorizationStatus status) = 0;
  /// `request` does not repeat, and its interval is finite, not negative and less than 100 years.
  virtual AddOutcome add(const std::string& bundle, platform::UNNotificationRequest request) = 0;
  /// Returns the identifiers of the waiting notifications, oldest first.
  virtual std::vector<std::string> pending(const std::string& bundle) = 0;
  /// Called when a notification server has appeared on the desktop.
  virtual void serverAppeared() = 0;
};

/// Not thread-safe, except for `stop`.
class NotificationCenterService {
 public:
  /// Connects to the session bus and takes the center's bus name, so that no second center can
  /// start. Calls wait until `serve`. Throws std::runtime_error with a one-line message when there
  /// is no bus or another program owns the name.
  NotificationCenterService();
  ~NotificationCenterService();
  NotificationCenterService(const NotificationCenterService&) = delete;
  NotificationCenterService& operator=(const NotificationCenterService&) = delete;

  /// As `DesktopNotifications::show`. Call it only from within `serve`.
  void show(const platform::UNMutableNotificationContent& content,
            std::function<void(ShowOutcome)> done);

  /// Handles calls until `stop` is called or the bus is gone. `calls` must outlive this object,
  /// whose destruction drops unfinished calls to the desktop. Calls `beforeWaiting` before each
  /// wait; it returns the timeout of the wait, or nullopt for none.
  void serve(NotificationCenterCalls& calls,
             const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting);

  /// Ends `serve`. Thread-safe and async-signal-safe.
  void stop() noexcept;

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace kivo
