#include "notification_center/pending_notification.h"

#include <chrono>
#include <cstdint>
#include <map>

#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"

namespace kivo {

using platform::JSONDecoder;
using platform::JSONEncoder;
using platform::JSONObject;

namespace {

// The decoder looks up members by known names, so entries with arbitrary keys are stored as a list.
std::string textOf(const std::map<std::string, std::string>& entries) {
  std::vector<JSONEncoder> objects;
  for (const auto& [key, value] : entries) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("key", key);
    object.encodeString("value", value);
  }
  return JSONEncoder::arrayText(objects);
}

std::map<std::string, std::string> entries(std::string_view text) {
  std::map<std::string, std::string> result;
  for (const JSONObject& object : JSONDecoder::arrayOfObjects(text)) {
    result[object.decodeString("key")] = object.decodeString("value");
  }
  return result;
}

platform::UNTimeIntervalNotificationTrigger triggerOf(const JSONObject& object) {
  const std::chrono::duration<double> interval(object.decodeDouble("interval"));
  if (!platform::UNTimeIntervalNotificationTrigger::isPossible(interval)) {
    throw platform::DecodingError(platform::DecodingError::Kind::dataCorrupted, "interval");
  }
  return {.timeInterval = interval};
}

platform::Moment momentOf(std::int64_t microseconds) {
  return platform::Moment(platform::Moment::duration(microseconds));
}

}  // namespace

std::string textOf(const std::vector<PendingNotification>& notifications) {
  std::vector<JSONEncoder> objects;
  for (const PendingNotification& notification : notifications) {
    const platform::UNNotificationRequest& request = notification.request;
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("bundle", notification.bundle);
    object.encodeString("identifier", request.identifier);
    object.encodeString("title", request.content.title);
    object.encodeString("body", request.content.body);
    object.encodeString("userInfo", textOf(request.content.userInfo));
    object.encodeDouble("interval", request.trigger.timeInterval.count());
    object.encodeInteger("dueMicroseconds", notification.due.time_since_epoch().count());
  }
  return JSONEncoder::arrayText(objects);
}

std::vector<PendingNotification> pendingNotifications(std::string_view text) {
  std::vector<PendingNotification> result;
  for (const JSONObject& object : JSONDecoder::arrayOfObjects(text)) {
    // Assigned one by one: with nested braces, g++ 12 destroys members twice when one of them
    // throws.
    PendingNotification& notification = result.emplace_back();
    notification.bundle = object.decodeString("bundle");
    notification.request.identifier = object.decodeString("identifier");
    notification.request.content.title = object.decodeString("title");
    notification.request.content.body = object.decodeString("body");
    notification.request.content.userInfo = entries(object.decodeString("userInfo"));
    notification.request.trigger = triggerOf(object);
    notification.due = momentOf(object.decodeInteger("dueMicroseconds"));
  }
  return result;
}

}  // namespace kivo
