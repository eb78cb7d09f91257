// Shows notifications through the desktop's notification server, and opens their links when the
// user activates them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/process/detached_programs.h"
#include "platform/user_notifications/un_notification_request.h"

struct DBusConnection;

namespace kivo {

/// The outcome of showing a notification.
enum class ShowOutcome {
  shown,
  /// No server is running, and the bus can start none.
  noServer,
  /// The server returned an error or went away.
  failed,
};

/// Use it only on the thread that runs the event loop of `bus`, which also calls the callbacks.
class DesktopNotifications {
 public:
  /// Calls `serverAppeared` whenever a server takes the desktop's bus name. The event loop of `bus`
  /// must have ended before this object is destroyed. Throws Failure when the bus cannot be used.
  DesktopNotifications(DBusConnection* bus, std::function<void()> serverAppeared);
  DesktopNotifications(const DesktopNotifications&) = delete;
  DesktopNotifications& operator=(const DesktopNotifications&) = delete;

  /// Asks the server to show `content` and returns at once. Calls `done` when the server has
  /// replied. There is no timeout: a server that hangs already has the notification, and would show
  /// it twice if it were sent again.
  void show(platform::UNMutableNotificationContent content, std::function<void(ShowOutcome)> done);

 private:
  void subscribeToServer(std::function<void()> serverAppeared);
  void notify(const platform::UNMutableNotificationContent& content,
              const std::vector<std::string>& capabilities, std::function<void(ShowOutcome)> done);

  struct Shown {
    std::string server;  // its unique bus name; other signals are ignored
    std::string link;
  };
  using Links = std::map<std::uint32_t, Shown>;
  Links::iterator linkOf(std::optional<std::uint32_t> id, std::string_view server);
  void rememberLink(std::uint32_t id, Shown shown);
  void open(const std::string& link);

  DBusConnection* bus_;
  Links links_;  // of the notifications on the screen
  linux_platform::DetachedPrograms openers_;
};

}  // namespace kivo
