#include "platform/linux/user_notifications/center_calls.h"

#include <map>
#include <utility>

#include "platform/linux/process/bus_call.h"
#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

void callCenter(BusThread& bus, const char* method, BusWriter::Write write, ReadReply read) {
  callOnBus(bus,
            {.object = bus_names::notificationCenter, .method = method, .write = std::move(write)},
            std::move(read));
}

void appendContent(BusWriter& content, const platform::UNMutableNotificationContent& shown) {
  content.textEntry(center_wire::title, shown.title);
  content.textEntry(center_wire::body, shown.body);
  content.textEntry(center_wire::sound, center_wire::defaultSound);
  content.variantEntry(center_wire::userInfo, "a{ss}", [&shown](BusWriter& userInfo) {
    userInfo.array("{ss}", [&shown](BusWriter& entries) {
      for (const auto& [key, value] : shown.userInfo) entries.entry(key, value);
    });
  });
}

void appendRequest(BusWriter& arguments, const std::string& bundle,
                   const platform::UNNotificationRequest& request) {
  using Repeats = platform::UNTimeIntervalNotificationTrigger::Repeats;
  arguments.text(bundle);
  arguments.text(request.identifier);
  arguments.array("{sv}",
                  [&request](BusWriter& content) { appendContent(content, request.content); });
  arguments.number(request.trigger.timeInterval.count());
  arguments.flag(request.trigger.repeats == Repeats::yes);
}

}  // namespace

void callAuthorizationStatus(BusThread& bus, const std::string& bundle,
                             std::function<void(std::optional<UNAuthorizationStatus>)> answer) {
  callCenter(
      bus, center_wire::authorizationStatus,
      [bundle](BusWriter& arguments) { arguments.text(bundle); },
      [answer = std::move(answer)](DBusMessage* reply) {
        if (reply == nullptr || failureOf(reply)) return answer(std::nullopt);
        const auto number = BusReader(reply).integer();
        answer(number ? center_wire::statusOf(*number) : std::nullopt);
      });
}

void callSetAuthorizationStatus(BusThread& bus, const std::string& bundle,
                                UNAuthorizationStatus status, std::function<void(bool)> answer) {
  callCenter(
      bus, center_wire::setAuthorizationStatus,
      [bundle, status](BusWriter& arguments) {
        arguments.text(bundle);
        arguments.integer(static_cast<int>(status));
      },
      [answer = std::move(answer)](DBusMessage* reply) {
        answer(reply != nullptr && !failureOf(reply));
      });
}

void callAdd(BusThread& bus, const std::string& bundle,
             const platform::UNNotificationRequest& request,
             std::function<void(std::optional<NSError>)> answer) {
  callCenter(
      bus, center_wire::add,
      [bundle, request](BusWriter& arguments) { appendRequest(arguments, bundle, request); },
      [answer = std::move(answer)](DBusMessage* reply) {
        if (reply == nullptr) return answer(centerNotAnswering());
        // The error's words could be anybody's; its name is a fixed identifier.
        const auto name = failureOf(reply);
        if (!name) return answer(std::nullopt);
        answer(NSError("UNErrorDomain", 2, "The notification center refused: " + *name));
      });
}

NSError centerNotAnswering() {
  return NSError("UNErrorDomain", 1, "The notification center does not answer");
}

}  // namespace kivo::linux_platform
