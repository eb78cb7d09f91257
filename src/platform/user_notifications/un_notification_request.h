// What a local notification is made of. Shows nothing.
#pragma once

#include <chrono>
#include <map>
#include <string>

namespace kivo::platform {

/// Whether a program may notify, as the person decided. The numbers are the platform's.
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

  /// Whether a request may wait for `interval`: for no negative time, and less than a century.
  static constexpr bool isPossible(std::chrono::duration<double> interval) {
    return interval >= interval.zero() && interval < std::chrono::years(100);
  }

  /// From the moment the center has the request.
  std::chrono::duration<double> timeInterval;
  Repeats repeats = Repeats::no;

  bool operator==(const UNTimeIntervalNotificationTrigger&) const = default;
};

struct UNNotificationRequest {
  /// A second request with the same identifier shows nothing more.
  std::string identifier;
  UNMutableNotificationContent content;
  UNTimeIntervalNotificationTrigger trigger;

  bool operator==(const UNNotificationRequest&) const = default;
};

}  // namespace kivo::platform
