// Stores the notification center's state: permissions, waiting notifications and the identifiers of
// the last ones shown.
#pragma once

#include <deque>
#include <optional>
#include <set>
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
  /// Opens the center's suite of user defaults; nullopt when that fails, which one line on standard
  /// error explains.
  static std::optional<NotificationRecord> open();

  /// Returns `notDetermined` for a bundle that was never set.
  [[nodiscard]] platform::UNAuthorizationStatus status(const std::string& bundle) const;
  void setStatus(const std::string& bundle, platform::UNAuthorizationStatus status);

  /// Returns the bundles whose status was set.
  [[nodiscard]] std::set<std::string> bundles() const;

  /// Returns the waiting notifications, oldest first; empty when the stored text is damaged, which
  /// is reported on standard error.
  [[nodiscard]] std::vector<PendingNotification> pending() const;
  void setPending(const std::vector<PendingNotification>& pending);

  /// Returns the last ones shown, oldest first; empty when the stored text is damaged, as above.
  [[nodiscard]] std::deque<NotificationName> shown() const;
  void setShown(const std::deque<NotificationName>& shown);

  /// Commits all changes durably. Returns false when that failed; then nothing on disk has changed.
  bool commit();

 private:
  explicit NotificationRecord(platform::UserDefaults defaults);

  platform::UserDefaults defaults_;
};

}  // namespace kivo
