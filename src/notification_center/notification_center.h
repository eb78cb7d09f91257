// The phone's notification center: who may notify, what waits, and when it is shown. Draws nothing
// itself, and speaks on no bus.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "notification_center/notification_center_service.h"
#include "notification_center/notification_record.h"

namespace kivo {

/// Used on one thread.
class NotificationCenter : public NotificationCenterCalls {
 public:
  /// The most requests that wait at a time; one more, and the oldest goes.
  static constexpr std::size_t mostWaiting = 500;
  /// The most that all of them hold together; a request that would be one too many is refused.
  static constexpr std::size_t mostBytesWaiting = 32 << 20;
  /// So many identifiers of what was shown last are known again, fewer if they are very long.
  static constexpr std::size_t mostRemembered = 500;
  static constexpr std::size_t mostBytesRemembered = 1 << 20;
  /// After this time a notification that the server refused is tried again.
  static constexpr std::chrono::seconds retryInterval{5};

  /// Shows a notification and says what came of it, at any time after the call.
  using Show = std::function<void(const platform::UNMutableNotificationContent&,
                                  std::function<void(ShowOutcome)>)>;

  /// Takes up what the record holds from earlier runs.
  NotificationCenter(NotificationRecord record, Show show);

  [[nodiscard]] platform::UNAuthorizationStatus authorizationStatus(
      const std::string& bundle) override;

  /// On denied, drops what waits of that bundle.
  bool setAuthorizationStatus(const std::string& bundle,
                              platform::UNAuthorizationStatus status) override;

  /// Keeps `request` until its interval from now is over. One whose identifier waits already, or
  /// was among the last ones shown, is kept no second time. Of the bundles only a denied one is
  /// refused: the other statuses are the sender's to respect.
  AddOutcome add(const std::string& bundle, platform::UNNotificationRequest request) override;

  [[nodiscard]] std::vector<std::string> pending(const std::string& bundle) override;

  void serverAppeared() override;

  /// Begins to show what is due; the time until the next one is due, none when nothing is.
  std::optional<std::chrono::milliseconds> showDue();

 private:
  enum class Stage {
    waiting,
    /// Until the server has answered.
    showing,
    /// The server would not have it; waits for its second chance.
    retrying,
  };
  struct Waiting {
    PendingNotification notification;
    /// What it counts of `mostBytesWaiting`.
    std::size_t size;
    platform::Moment showAt;
    /// From the present, whatever the clock has been set to since.
    platform::Moment::duration longestWait;
    Stage stage = Stage::waiting;
  };

  AddOutcome append(PendingNotification notification);
  std::optional<std::chrono::milliseconds> untilNextIsDue(platform::Moment now) const;
  void ended(const NotificationName& name, ShowOutcome outcome);
  std::vector<Waiting>::iterator find(const NotificationName& name);
  void rememberShown(NotificationName name);
  void setPendingFrom(const std::vector<Waiting>& waiting);

  NotificationRecord record_;
  Show show_;
  std::vector<Waiting> waiting_;        // oldest first; as on disk
  std::deque<NotificationName> shown_;  // oldest first
  bool serverMissing_ = false;
};

}  // namespace kivo
