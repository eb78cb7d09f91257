// A notification server for tests and demonstrations without a desktop: it records notifications
// instead of showing them. They do not expire.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kivo::linux_platform {
class BusThread;
}  // namespace kivo::linux_platform

namespace kivo {

/// One notification as received over D-Bus.
struct ShownNotification {
  std::uint32_t id = 0;
  std::string appName;
  std::uint32_t replaces = 0;
  std::string icon;
  std::string summary;
  std::string body;
  /// Alternating keys and labels.
  std::vector<std::string> actions;
  /// Hints by name. The value is empty for a hint that is not a string.
  std::map<std::string, std::string> hints;
  std::int32_t expiresAfter = 0;
  std::chrono::steady_clock::time_point shownAt;
};

/// Thread-safe.
class NotificationDisplay {
 public:
  /// Takes the bus name of the desktop's notification server on the bus at `address`, and reports
  /// `capabilities`. Throws std::runtime_error with one line when the bus does not answer or
  /// another program owns the name.
  explicit NotificationDisplay(const std::string& address,
                               std::vector<std::string> capabilities = {"body", "actions"});
  /// Releases the name.
  ~NotificationDisplay();
  NotificationDisplay(const NotificationDisplay&) = delete;
  NotificationDisplay& operator=(const NotificationDisplay&) = delete;

  /// Returns the notifications received so far, in order.
  [[nodiscard]] std::vector<ShownNotification> shown() const;

  /// Blocks until `count` notifications in all were received, for at most `limit`. Returns the ones
  /// received so far.
  std::vector<ShownNotification> waitForShown(std::size_t count, std::chrono::milliseconds limit);

  /// Sends the signals of a click on the notification `id`: ActionInvoked with the default action,
  /// then NotificationClosed. Returns at once.
  void invokeDefaultAction(std::uint32_t id);

 private:
  struct State;
  std::unique_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
