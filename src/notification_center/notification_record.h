// What the notification center keeps on disk: permissions, what waits, and the identifiers of what
// was shown last. Shows nothing.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "notification_center/pending_notification.h"
#include "platform/foundation/user_defaults.h"

namespace kivo {

/// A bundle and the identifier of one of its requests.
using NotificationName = std::pair<std::string, std::string>;

class NotificationRecord {
 public:
  /// Opens the center's suite of user defaults; none when that cannot be done.
  static std::optional<NotificationRecord> open();

  /// Not determined for a bundle that was never set.
  [[nodiscard]] platform::UNAuthorizationStatus status(const std::string& bundle) const;
  void setStatus(const std::string& bundle, platform::UNAuthorizationStatus status);

  /// Oldest first. A damaged text counts as none, and is reported on standard error.
  [[nodiscard]] std::vector<PendingNotification> pending() const;
  void setPending(const std::vector<PendingNotification>& pending);

  /// The last ones that were shown, oldest first.
  [[nodiscard]] std::deque<NotificationName> shown() const;
  void setShown(const std::deque<NotificationName>& shown);

  /// Makes durable what was set, all or none; false when that failed, and nothing has changed on
  /// disk.
  bool commit();

 private:
  explicit NotificationRecord(platform::UserDefaults defaults);

  platform::UserDefaults defaults_;
};

}  // namespace kivo
