#include "notification_center/request_reader.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "notification_center/request_size.h"
#include "platform/linux/bus/notification_center_interface.h"

namespace kivo {

namespace notification_center_interface = linux_platform::notification_center_interface;
using linux_platform::BusReader;
using linux_platform::BusRefusal;

namespace {

using platform::UNMutableNotificationContent;
using platform::UNTimeIntervalNotificationTrigger;

BusRefusal invalid(const std::string& words) { return {DBUS_ERROR_INVALID_ARGS, words}; }

// Copies the texts of a request until it exceeds the limit.
class TextCopier {
 public:
  std::string copy(std::string_view text) {
    left_ -= std::min(left_, sizeOf(text));
    if (left_ == 0) throw tooLarge();
    return std::string(text);
  }

 private:
  std::size_t left_ = largestRequest + 1;
};

BusReader valueOfType(BusReader& entry, const std::string& key, const char* type) {
  BusReader value = entry.inside();
  if (value.type() != type)
    throw invalid("the value of " + key + " in content must have the type " + type);
  return value;
}

void readContentEntry(BusReader entry, TextCopier& copier, UNMutableNotificationContent& content) {
  const std::string key = copier.copy(*entry.text());
  const auto text = [&] { return copier.copy(*valueOfType(entry, key, "s").text()); };
  if (key == notification_center_interface::title) {
    content.title = text();
  } else if (key == notification_center_interface::body) {
    content.body = text();
  } else if (key == notification_center_interface::sound) {
    if (text() != notification_center_interface::defaultSound)
      throw invalid("unknown sound; the only one is \"default\"");
  } else if (key == notification_center_interface::userInfo) {
    BusReader pairs = valueOfType(entry, key, "a{ss}").inside();
    for (; !pairs.atEnd(); pairs.skip()) {
      BusReader pair = pairs.inside();
      std::string name = copier.copy(*pair.text());
      content.userInfo.insert_or_assign(std::move(name), copier.copy(*pair.text()));
    }
  } else {
    throw invalid("content has an unknown key");
  }
}

UNTimeIntervalNotificationTrigger triggerOf(double interval, bool repeats) {
  const std::chrono::duration<double> timeInterval(interval);
  if (!UNTimeIntervalNotificationTrigger::isPossible(timeInterval)) {
    throw invalid("the interval must be at least 0 s and less than 100 years");
  }
  if (repeats) throw invalid("repeating notifications are not supported");
  return {.timeInterval = timeInterval};
}

}  // namespace

BusRefusal tooLarge() { return {DBUS_ERROR_LIMITS_EXCEEDED, "the request is larger than 2 MiB"}; }

ReceivedRequest readRequest(BusReader arguments) {
  TextCopier copier;
  ReceivedRequest received;
  received.bundle = copier.copy(*arguments.text());
  received.request.identifier = copier.copy(*arguments.text());
  BusReader entries = arguments.inside();
  for (; !entries.atEnd(); entries.skip()) {
    readContentEntry(entries.inside(), copier, received.request.content);
  }
  arguments.skip();
  const double interval = *arguments.number();
  received.request.trigger = triggerOf(interval, *arguments.flag());
  return received;
}

}  // namespace kivo
