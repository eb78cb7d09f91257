#include "platform/linux/user_notifications/center_calls.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <systemd/sd-bus.h>

#include "platform/foundation/utf8.h"
#include "platform/linux/process/bus_thread.h"
#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;
// Writes the arguments of a call; a negative code of the bus library when it cannot be done.
using Write = std::function<int(sd_bus_message*)>;
// Null: no reply will come.
using Read = std::function<void(sd_bus_message*)>;

// Sees to it that an answer is given exactly once, by the time nobody can give it any more.
class Answering {
 public:
  explicit Answering(Read read) : read_(std::move(read)) {}
  ~Answering() { give(nullptr); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;

  void give(sd_bus_message* reply) {
    if (const Read read = std::exchange(read_, nullptr)) read(reply);
  }

 private:
  Read read_;
};

// As the bus library calls who waits for a reply, and who must know that it waits no more.
int giveReply(sd_bus_message* reply, void* answering, sd_bus_error*) {
  static_cast<Answering*>(answering)->give(reply);
  return 0;
}
void endWaiting(void* answering) { delete static_cast<Answering*>(answering); }

void send(sd_bus* bus, const char* method, const Write& write,
          std::unique_ptr<Answering> answering) {
  const BusObject& center = bus_names::notificationCenter;
  sd_bus_message* made = nullptr;
  if (sd_bus_message_new_method_call(bus, &made, center.service, center.path, center.interface,
                                     method) < 0) {
    return;
  }
  const Message message(made, sd_bus_message_unref);
  sd_bus_slot* waiting = nullptr;
  constexpr std::uint64_t usualPatience = 0;
  if (write(made) < 0 ||
      sd_bus_call_async(bus, &waiting, made, giveReply, answering.get(), usualPatience) < 0) {
    return;
  }
  sd_bus_slot_set_destroy_callback(waiting, endWaiting);
  static_cast<void>(answering.release());  // the connection's from now on
  sd_bus_slot_set_floating(waiting, 1);
  sd_bus_slot_unref(waiting);
}

void call(BusThread& bus, const char* method, Write write, Read read) {
  auto answering =
      std::make_shared<std::unique_ptr<Answering>>(std::make_unique<Answering>(std::move(read)));
  bus.post([method, write = std::move(write),
            answering = std::move(answering)](StandingConnection* standing) {
    if (standing != nullptr) send(standing->bus(), method, write, std::move(*answering));
  });
}

bool isError(sd_bus_message* reply) { return sd_bus_message_is_method_error(reply, nullptr) > 0; }

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

// The first character of `text`, which is valid UTF-8 and not empty.
std::string_view firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  return text.substr(0, lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4);
}

// The bus has no NUL, and its receivers take no noncharacters (U+FDD0 to U+FDEF, and the last two
// of each plane).
bool isCarried(std::string_view character) {
  if (character == std::string_view("\0", 1)) return false;
  if (character >= "\uFDD0" && character <= "\uFDEF") return false;
  if (character.size() < 3) return true;
  const bool endOfPlane =
      (static_cast<unsigned char>(character[character.size() - 3]) & 0x0F) == 0x0F &&
      character[character.size() - 2] == '\xBF' && character.back() >= '\xBE';
  return !endOfPlane;
}

}  // namespace

void callAuthorizationStatus(BusThread& bus, const std::string& bundle,
                             std::function<void(std::optional<UNAuthorizationStatus>)> answer) {
  call(
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
  call(
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
  call(
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

std::string busText(std::string_view text) {
  constexpr std::string_view replacement = "\uFFFD";
  const std::string valid = platform::repairedUtf8(text);
  std::string result;
  for (std::size_t at = 0; at < valid.size();) {
    const std::string_view character = firstCharacter(std::string_view(valid).substr(at));
    result += isCarried(character) ? character : replacement;
    at += character.size();
  }
  return result;
}

}  // namespace kivo::linux_platform
