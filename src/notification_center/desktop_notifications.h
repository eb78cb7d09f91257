// Shows notifications by the desktop's own server, and opens what they lead to when the person
// chooses them. Keeps none: one that is not shown is its caller's.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "notification_center/link_opener.h"
#include "platform/user_notifications/un_notification_request.h"

struct DBusConnection;

namespace kivo {

/// What came of showing a notification.
enum class ShowOutcome {
  shown,
  /// There is no server, and none that the bus could start.
  noServer,
  /// The server refused, or went away meanwhile.
  failed,
};

/// Used on the thread that serves `bus`, which calls the functions that it is handed.
class DesktopNotifications {
 public:
  /// Calls `serverAppeared` whenever a server takes the desktop's name. `bus` is not served any
  /// more when this object ends. Throws std::runtime_error with one line when the bus cannot be
  /// used.
  DesktopNotifications(DBusConnection* bus, std::function<void()> serverAppeared);
  DesktopNotifications(const DesktopNotifications&) = delete;
  DesktopNotifications& operator=(const DesktopNotifications&) = delete;

  /// Asks the server to show `content`. Returns at once; `done` is called once the server has
  /// answered, however late: a server that hangs has the notification already, and would show it
  /// twice if it were sent again.
  void show(platform::UNMutableNotificationContent content, std::function<void(ShowOutcome)> done);

 private:
  void subscribeToServer(std::function<void()> serverAppeared);
  void notify(const platform::UNMutableNotificationContent& content,
              const std::vector<std::string>& capabilities, std::function<void(ShowOutcome)> done);

  struct Shown {
    std::string server;  // its unique name, from which alone signals count
    std::string link;
  };
  using Links = std::map<std::uint32_t, Shown>;
  Links::iterator linkOf(std::optional<std::uint32_t> id, std::string_view server);
  void rememberLink(std::uint32_t id, Shown shown);

  DBusConnection* bus_;
  Links links_;  // of what is on the screen
  LinkOpener opener_;
};

}  // namespace kivo
