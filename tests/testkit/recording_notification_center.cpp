#include "testkit/recording_notification_center.h"

#include <utility>

namespace kivo::testkit {

using platform::NSError;
using platform::UNNotificationRequest;
using platform::UNNotificationSettings;

void RecordingNotificationCenter::setStatus(platform::UNAuthorizationStatus status) {
  const std::lock_guard lock(mutex_);
  status_ = status;
}

void RecordingNotificationCenter::willRefuse() {
  const std::lock_guard lock(mutex_);
  refuses_ = true;
}

platform::Task<UNNotificationSettings> RecordingNotificationCenter::notificationSettings() {
  log_.add("settings");
  co_await settingsGate_.pass();
  const std::lock_guard lock(mutex_);
  co_return UNNotificationSettings{.authorizationStatus = status_};
}

platform::Task<std::optional<NSError>> RecordingNotificationCenter::addNotificationRequest(
    UNNotificationRequest request) {
  log_.add("notification");
  bool refuses = false;
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
    refuses = refuses_;
  }
  co_await addGate_.pass();
  std::optional<NSError> error;
  if (refuses) error = NSError("UNErrorDomain", 1, "Refused");
  co_return error;
}

std::vector<UNNotificationRequest> RecordingNotificationCenter::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

std::vector<std::string> RecordingNotificationCenter::told() const {
  std::vector<std::string> lines;
  for (const auto& request : requests()) {
    lines.push_back(request.content.title + " | " + request.content.body);
  }
  return lines;
}

}  // namespace kivo::testkit
