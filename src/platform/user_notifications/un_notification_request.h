// The parts of a local notification request.
#pragma once

#include <chrono>
#include <map>
#include <string>

namespace kivo::platform {

/// The user's permission to notify. The numbers are part of the platform's interface.
enum class UNAuthorizationStatus : int {
  notDetermined = 0,
  denied = 1,
  authorized = 2,
  provisional = 3,
  ephemeral = 4,
};

enum class UNNotificationSound { defaultSound };

/// Texts are UTF-8.
struct UNMutableNotificationContent {
  std::string title;
  std::string body;
  UNNotificationSound sound = UNNotificationSound::defaultSound;
  std::map<std::string, std::string> userInfo;

  bool operator==(const UNMutableNotificationContent&) const = default;
};

struct UNTimeIntervalNotificationTrigger {
  enum class Repeats { no, yes };

  /// Whether `interval` is allowed: not negative, and less than 100 years.
  static constexpr bool isPossible(std::chrono::duration<double> interval) {
    return interval >= interval.zero() && interval < std::chrono::years(100);
  }

  /// Counted from the moment when the center accepts the request.
  std::chrono::duration<double> timeInterval;
  Repeats repeats = Repeats::no;

  bool operator==(const UNTimeIntervalNotificationTrigger&) const = default;
};

struct UNNotificationRequest {
  /// A second request with the same identifier shows nothing.
  std::string identifier;
  UNMutableNotificationContent content;
  UNTimeIntervalNotificationTrigger trigger;

  bool operator==(const UNNotificationRequest&) const = default;
};

}  // namespace kivo::platform
