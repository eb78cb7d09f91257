// The logic of the notification center: permissions, waiting notifications, and when to show them.
// NotificationCenterService connects it to the bus.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "notification_center/desktop_notifications.h"
#include "notification_center/notification_record.h"

namespace kivo {

/// The outcome of `NotificationCenter::add`.
enum class AddOutcome {
  /// Written to disk.
  kept,
  /// The user has denied notifications of this bundle.
  denied,
  /// The waiting requests are too large already.
  noRoom,
  /// Writing it to disk failed.
  notKept,
};

/// The outcome of `NotificationCenter::setAuthorizationStatus`.
enum class PermissionOutcome {
  /// Written to disk.
  kept,
  /// The bundle's name is longer than `longestBundle`.
  longName,
  /// The statuses of `mostBundles` others are stored.
  noRoom,
  /// Writing it to disk failed.
  notKept,
};

/// Texts are valid UTF-8 without NUL. Not thread-safe.
class NotificationCenter {
 public:
  /// The largest number of waiting requests. One more drops the oldest.
  static constexpr std::size_t mostWaiting = 500;
  /// The largest total size of the waiting requests, in bytes. A request that would exceed it is
  /// refused.
  static constexpr std::size_t mostBytesWaiting = 32 << 20;
  /// The number of shown identifiers that are remembered, fewer if they are very long.
  static constexpr std::size_t mostRemembered = 500;
  static constexpr std::size_t mostBytesRemembered = 1 << 20;
  /// The longest name of a bundle whose permission is stored, in bytes, and the largest number of
  /// such bundles.
  static constexpr std::size_t longestBundle = 255;
  static constexpr std::size_t mostBundles = 500;
  /// How long to wait before showing a notification again that the server refused.
  static constexpr std::chrono::seconds retryInterval{5};
  /// The largest number of notifications that are shown at the same moment, without the one that
  /// counts the rest.
  static constexpr std::size_t mostAtOnce = 5;

  /// Shows a notification, and calls the callback with the outcome at any later time.
  using Show = std::function<void(const platform::UNMutableNotificationContent&,
                                  std::function<void(ShowOutcome)>)>;

  /// Loads what earlier runs left in `record`.
  NotificationCenter(NotificationRecord record, Show show);

  [[nodiscard]] platform::UNAuthorizationStatus authorizationStatus(
      const std::string& bundle) const;

  /// Denying a bundle also drops its waiting notifications, except those that are being shown.
  PermissionOutcome setAuthorizationStatus(const std::string& bundle,
                                           platform::UNAuthorizationStatus status);

  /// Keeps `request` until its interval, counted from now, is over and it was shown. The request
  /// does not repeat, and its interval is finite, not negative and less than 100 years. Ignores a
  /// request whose identifier already waits or is among the last ones shown. Refuses only a denied
  /// bundle: senders have to respect the other statuses themselves.
  AddOutcome add(const std::string& bundle, platform::UNNotificationRequest request);

  /// Returns the identifiers of the waiting notifications, oldest first.
  [[nodiscard]] std::vector<std::string> pending(const std::string& bundle) const;

  /// Call it when a notification server has appeared on the desktop.
  void serverAppeared();

  /// Starts to show the notifications that are due: the newest `mostAtOnce`, oldest first, then one
  /// that counts the rest. The counted ones are not shown any more once that one was. Returns the
  /// time until the next one is due; nullopt when nothing waits, or while there is no server.
  std::optional<std::chrono::milliseconds> showDue();

 private:
  enum class Stage {
    waiting,
    /// Until the server has replied.
    showing,
    /// The server refused it or is absent; waits to be shown again.
    retrying,
  };
  struct Waiting {
    PendingNotification notification;
    /// Its share of `mostBytesWaiting`.
    std::size_t size;
    platform::Moment showAt;
    /// The longest time from now until it is shown, even if the clock was set back.
    platform::Moment::duration longestWait;
    Stage stage = Stage::waiting;
  };

  AddOutcome append(PendingNotification notification);
  std::vector<PendingNotification> beginDue(platform::Moment now);
  std::optional<std::chrono::milliseconds> untilNextIsDue(platform::Moment now) const;
  void show(const platform::UNMutableNotificationContent& content,
            std::vector<NotificationName> names);
  void ended(const std::vector<NotificationName>& names, ShowOutcome outcome);
  std::vector<Waiting>::iterator find(const NotificationName& name);
  void rememberShown(const NotificationName& name);
  void setPendingFrom(const std::vector<Waiting>& waiting);

  NotificationRecord record_;
  Show show_;
  std::vector<Waiting> waiting_;        // oldest first; as on disk
  std::deque<NotificationName> shown_;  // oldest first
  bool serverMissing_ = false;
};

}  // namespace kivo
