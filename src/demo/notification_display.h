// A notification server that shows nothing but keeps what it is asked to show, for tests and
// demonstrations without a desktop. Does not expire anything.
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

/// One notification as it came over the bus.
struct ShownNotification {
  std::uint32_t id = 0;
  std::string appName;
  std::uint32_t replaces = 0;
  std::string icon;
  std::string summary;
  std::string body;
  /// Key and words, one after the other.
  std::vector<std::string> actions;
  /// Those hints that are texts; another one stands with an empty text.
  std::map<std::string, std::string> hints;
  std::int32_t expiresAfter = 0;
  std::chrono::steady_clock::time_point shownAt;
};

/// Usable from any thread.
class NotificationDisplay {
 public:
  /// Takes the desktop's name for notifications on the bus at `address`, and says that it has
  /// `capabilities`. Throws std::runtime_error with one line when that cannot be done.
  explicit NotificationDisplay(const std::string& address,
                               std::vector<std::string> capabilities = {"body", "actions"});
  /// Gives up the name.
  ~NotificationDisplay();
  NotificationDisplay(const NotificationDisplay&) = delete;
  NotificationDisplay& operator=(const NotificationDisplay&) = delete;

  /// What it was asked to show so far, in order.
  [[nodiscard]] std::vector<ShownNotification> shown() const;

  /// Blocks until it was asked to show `count` in all, for at most `limit`; what it was asked to
  /// show so far.
  std::vector<ShownNotification> waitForShown(std::size_t count, std::chrono::milliseconds limit);

  /// Does what a click on that notification does: tells its sender, and closes it.
  void invokeDefaultAction(std::uint32_t id);

 private:
  struct State;
  std::unique_ptr<State> state_;
  std::unique_ptr<linux_platform::BusThread> bus_;
};

}  // namespace kivo
