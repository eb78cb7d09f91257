// The place of the phone's notification center on the session bus, with its way to the desktop.
// Decides and keeps nothing: its owner does.
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

/// What became of a request.
enum class AddOutcome {
  /// The center has it, on its disk.
  kept,
  /// The person does not want notifications of that bundle.
  denied,
  /// What waits is too large already.
  noRoom,
  /// It could not be written.
  notKept,
};

/// What answers the calls that come over the bus. Texts are valid UTF-8 without NUL.
class NotificationCenterCalls {
 public:
  virtual ~NotificationCenterCalls() = default;
  virtual platform::UNAuthorizationStatus authorizationStatus(const std::string& bundle) = 0;
  /// False when the status could not be written.
  virtual bool setAuthorizationStatus(const std::string& bundle,
                                      platform::UNAuthorizationStatus status) = 0;
  /// `request` does not repeat, and its interval is finite, not negative and below a century.
  virtual AddOutcome add(const std::string& bundle, platform::UNNotificationRequest request) = 0;
  /// The identifiers of what waits to be shown, oldest first.
  virtual std::vector<std::string> pending(const std::string& bundle) = 0;
  /// A server for notifications has come to the desktop.
  virtual void serverAppeared() = 0;
};

/// Used on one thread.
class NotificationCenterService {
 public:
  /// Connects to the session bus and takes the center's name, so that no other center can begin to
  /// work; calls wait until `serve`. Throws std::runtime_error with one line when there is no bus
  /// or the name is another program's.
  NotificationCenterService();
  ~NotificationCenterService();
  NotificationCenterService(const NotificationCenterService&) = delete;
  NotificationCenterService& operator=(const NotificationCenterService&) = delete;

  /// As `DesktopNotifications::show`; to be called from within `serve` only.
  void show(const platform::UNMutableNotificationContent& content,
            std::function<void(ShowOutcome)> done);

  /// Answers calls until `stop`, or until the bus is gone. `calls` outlives this object, whose end
  /// ends what is being shown. `beforeWaiting` is called before each wait and yields the longest
  /// time to wait, none for no limit.
  void serve(NotificationCenterCalls& calls,
             const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting);

  /// Ends `serve`. From any thread and from a signal handler.
  void stop() noexcept;

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace kivo
