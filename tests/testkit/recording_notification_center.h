// A notification center that records its requests and shows nothing.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/user_notifications/un_user_notification_center.h"
#include "testkit/event_log.h"
#include "testkit/gate.h"

namespace kivo::testkit {

/// Authorized at first. As with the real one, a cancelled task still posts. Thread-safe.
class RecordingNotificationCenter : public platform::UNUserNotificationCenter {
 public:
  explicit RecordingNotificationCenter(EventLog& log) : log_(log) {}

  void setStatus(platform::UNAuthorizationStatus status);
  /// From now on requests are refused.
  void willRefuse();

  platform::Task<platform::UNNotificationSettings> notificationSettings() override;
  platform::Task<std::optional<platform::NSError>> addNotificationRequest(
      platform::UNNotificationRequest request) override;

  /// Gates that hold, when a test closes them, the reading of the settings and a recorded request.
  Gate& settingsGate() { return settingsGate_; }
  Gate& addGate() { return addGate_; }

  /// The requests, refused or not.
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
