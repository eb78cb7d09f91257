#include "notification_center/notification_record.h"

#include <iostream>
#include <string_view>

#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"

namespace kivo {
namespace {

using platform::UNAuthorizationStatus;

constexpr const char* suiteName = "app.kivo.NotificationCenter";
constexpr const char* pendingKey = "pendingNotifications";
constexpr const char* shownKey = "shownNotifications";

constexpr std::string_view statusPrefix = "authorizationStatus.";

std::string statusKey(const std::string& bundle) { return std::string(statusPrefix) + bundle; }

void reportDamage(const char* key) {
  std::cerr << "kivo-notification-center: the stored value of " << key << " cannot be read\n";
}

}  // namespace

NotificationRecord::NotificationRecord(platform::UserDefaults defaults)
    : defaults_(std::move(defaults)) {}

std::optional<NotificationRecord> NotificationRecord::open() {
  auto defaults = platform::UserDefaults::initWithSuiteName(suiteName);
  if (!defaults) return std::nullopt;
  return NotificationRecord(std::move(*defaults));
}

UNAuthorizationStatus NotificationRecord::status(const std::string& bundle) const {
  const double number = defaults_.doubleForKey(statusKey(bundle));
  if (!(number >= 0 && number <= static_cast<int>(UNAuthorizationStatus::ephemeral))) {
    return UNAuthorizationStatus::notDetermined;
  }
  return static_cast<UNAuthorizationStatus>(static_cast<int>(number));
}

void NotificationRecord::setStatus(const std::string& bundle, UNAuthorizationStatus status) {
  defaults_.setDouble(statusKey(bundle), static_cast<int>(status));
}

std::set<std::string> NotificationRecord::bundles() const {
  std::set<std::string> bundles;
  for (const auto& [key, value] : defaults_.dictionaryRepresentation()) {
    if (key.starts_with(statusPrefix)) bundles.insert(key.substr(statusPrefix.size()));
  }
  return bundles;
}

std::vector<PendingNotification> NotificationRecord::pending() const {
  const auto text = defaults_.stringForKey(pendingKey);
  if (!text) return {};
  try {
    return pendingNotifications(*text);
  } catch (const platform::DecodingError&) {
    reportDamage(pendingKey);
    return {};
  }
}

void NotificationRecord::setPending(const std::vector<PendingNotification>& pending) {
  defaults_.setObject(pendingKey, textOf(pending));
}

std::deque<NotificationName> NotificationRecord::shown() const {
  const auto text = defaults_.stringForKey(shownKey);
  if (!text) return {};
  try {
    std::deque<NotificationName> result;
    for (const platform::JSONObject& object : platform::JSONDecoder::arrayOfObjects(*text)) {
      result.emplace_back(object.decodeString("bundle"), object.decodeString("identifier"));
    }
    return result;
  } catch (const platform::DecodingError&) {
    reportDamage(shownKey);
    return {};
  }
}

void NotificationRecord::setShown(const std::deque<NotificationName>& shown) {
  std::vector<platform::JSONEncoder> objects;
  for (const auto& [bundle, identifier] : shown) {
    platform::JSONEncoder& object = objects.emplace_back();
    object.encodeString("bundle", bundle);
    object.encodeString("identifier", identifier);
  }
  defaults_.setObject(shownKey, platform::JSONEncoder::arrayText(objects));
}

bool NotificationRecord::commit() { return defaults_.synchronize(); }

}  // namespace kivo
