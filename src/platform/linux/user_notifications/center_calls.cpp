#include "platform/linux/user_notifications/center_calls.h"

#include <cstdint>
#include <map>
#include <utility>

#include <systemd/sd-bus.h>

#include "platform/linux/process/bus_call.h"
#include "platform/linux/process/bus_text.h"
#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

void callCenter(BusThread& bus, const char* method, std::function<int(sd_bus_message*)> write,
                ReadReply read) {
  callOnBus(bus,
            {.object = bus_names::notificationCenter, .method = method, .write = std::move(write)},
            std::move(read));
}

int appendUserInfo(sd_bus_message* message, const std::map<std::string, std::string>& userInfo) {
  int code = sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
  if (code >= 0) code = sd_bus_message_append(message, "s", center_wire::userInfo);
  if (code >= 0) code = sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "a{ss}");
  if (code >= 0) code = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{ss}");
  for (const auto& [key, value] : userInfo) {
    if (code < 0) return code;
    code = sd_bus_message_append(message, "{ss}", busText(key).c_str(), busText(value).c_str());
  }
  for (int open = 0; code >= 0 && open < 3; ++open) code = sd_bus_message_close_container(message);
  return code;
}

int appendContent(sd_bus_message* message, const platform::UNMutableNotificationContent& content) {
  int code = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
  if (code >= 0) {
    code = sd_bus_message_append(message, "{sv}{sv}{sv}", center_wire::title, "s",
                                 busText(content.title).c_str(), center_wire::body, "s",
                                 busText(content.body).c_str(), center_wire::sound, "s",
                                 center_wire::defaultSound);
  }
  if (code >= 0) code = appendUserInfo(message, content.userInfo);
  return code >= 0 ? sd_bus_message_close_container(message) : code;
}

int appendRequest(sd_bus_message* message, const std::string& bundle,
                  const platform::UNNotificationRequest& request) {
  using Repeats = platform::UNTimeIntervalNotificationTrigger::Repeats;
  int code =
      sd_bus_message_append(message, "ss", bundle.c_str(), busText(request.identifier).c_str());
  if (code >= 0) code = appendContent(message, request.content);
  if (code < 0) return code;
  return sd_bus_message_append(message, "db", request.trigger.timeInterval.count(),
                               static_cast<int>(request.trigger.repeats == Repeats::yes));
}

}  // namespace

void callAuthorizationStatus(BusThread& bus, const std::string& bundle,
                             std::function<void(std::optional<UNAuthorizationStatus>)> answer) {
  callCenter(
      bus, center_wire::authorizationStatus,
      [bundle = busText(bundle)](sd_bus_message* message) {
        return sd_bus_message_append(message, "s", bundle.c_str());
      },
      [answer = std::move(answer)](sd_bus_message* reply) {
        std::int32_t number = -1;
        const bool read =
            reply != nullptr && !isError(reply) && sd_bus_message_read(reply, "i", &number) > 0;
        answer(read ? center_wire::statusOf(number) : std::nullopt);
      });
}

void callSetAuthorizationStatus(BusThread& bus, const std::string& bundle,
                                UNAuthorizationStatus status, std::function<void(bool)> answer) {
  callCenter(
      bus, center_wire::setAuthorizationStatus,
      [bundle = busText(bundle), number = static_cast<int>(status)](sd_bus_message* message) {
        return sd_bus_message_append(message, "si", bundle.c_str(), number);
      },
      [answer = std::move(answer)](sd_bus_message* reply) {
        answer(reply != nullptr && !isError(reply));
      });
}

void callAdd(BusThread& bus, const std::string& bundle,
             const platform::UNNotificationRequest& request,
             std::function<void(std::optional<NSError>)> answer) {
  callCenter(
      bus, center_wire::add,
      [bundle = busText(bundle), request](sd_bus_message* message) {
        return appendRequest(message, bundle, request);
      },
      [answer = std::move(answer)](sd_bus_message* reply) {
        if (reply == nullptr) return answer(centerNotAnswering());
        if (!isError(reply)) return answer(std::nullopt);
        // The error's words could be anybody's; its name is a fixed identifier.
        const std::string name = sd_bus_message_get_error(reply)->name;
        answer(NSError("UNErrorDomain", 2, "The notification center refused: " + name));
      });
}

NSError centerNotAnswering() {
  return NSError("UNErrorDomain", 1, "The notification center does not answer");
}

}  // namespace kivo::linux_platform
