// Shows notifications by the desktop's own server, and opens what they lead to when the person
// chooses them. Keeps none: one that is not shown is its caller's.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/process/link_opener.h"
#include "platform/user_notifications/un_notification_request.h"

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace kivo::linux_platform {

/// What came of showing a notification.
enum class ShowOutcome {
  shown,
  /// There is no server, and none that the bus could start.
  noServer,
  /// The server refused, or went away meanwhile.
  failed,
};

/// Used on the thread that serves `connection`.
class DesktopNotifications {
 public:
  /// Calls `serverAppeared` whenever a server takes the desktop's name. `connection` outlives this.
  DesktopNotifications(sdbus::IConnection& connection, std::function<void()> serverAppeared);
  ~DesktopNotifications();
  DesktopNotifications(const DesktopNotifications&) = delete;
  DesktopNotifications& operator=(const DesktopNotifications&) = delete;

  /// Asks the server to show `content`. Returns at once; `done` is called once the server has
  /// answered, however late: a server that hangs has the notification already, and would show it
  /// twice if it were sent again.
  void show(platform::UNMutableNotificationContent content, std::function<void(ShowOutcome)> done);

 private:
  void notify(const platform::UNMutableNotificationContent& content,
              const std::vector<std::string>& capabilities, std::function<void(ShowOutcome)> done);
  void rememberLink(std::uint32_t id, const std::string& server,
                    const platform::UNMutableNotificationContent& content);

  struct Shown {
    std::string server;  // its unique name, from which alone signals count
    std::string link;
  };
  using Links = std::map<std::uint32_t, Shown>;
  Links::iterator linkOf(std::uint32_t id, const std::string& server);

  std::unique_ptr<sdbus::IProxy> server_;
  Links links_;  // of what is on the screen
  LinkOpener opener_;
};

}  // namespace kivo::linux_platform
