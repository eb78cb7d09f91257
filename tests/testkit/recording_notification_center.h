// A notification center that remembers what it was handed. Shows nothing.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/user_notifications/un_user_notification_center.h"
#include "testkit/event_log.h"
#include "testkit/gate.h"

namespace kivo::testkit {

/// Fully authorized at first. As with the real one, cancelling a task does not cut its post short.
/// Usable from any thread.
class RecordingNotificationCenter : public platform::UNUserNotificationCenter {
 public:
  explicit RecordingNotificationCenter(EventLog& log) : log_(log) {}

  void setStatus(platform::UNAuthorizationStatus status);
  /// From now on requests are refused.
  void willRefuse();

  platform::Task<platform::UNNotificationSettings> notificationSettings() override;
  platform::Task<std::optional<platform::NSError>> addNotificationRequest(
      platform::UNNotificationRequest request) override;

  /// Where reading the settings, respectively a request that has been recorded, is held when a test
  /// closes it.
  Gate& settingsGate() { return settingsGate_; }
  Gate& addGate() { return addGate_; }

  /// What was handed over, refused or not.
  [[nodiscard]] std::vector<platform::UNNotificationRequest> requests() const;
  /// "title | body" of each.
  [[nodiscard]] std::vector<std::string> told() const;

 private:
  EventLog& log_;
  Gate settingsGate_;
  Gate addGate_;
  mutable std::mutex mutex_;
  platform::UNAuthorizationStatus status_ = platform::UNAuthorizationStatus::authorized;
  bool refuses_ = false;
  std::vector<platform::UNNotificationRequest> requests_;
};

}  // namespace kivo::testkit
