#include "platform/linux/user_notifications/center_calls.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/foundation/utf8.h"
#include "platform/linux/process/bus_thread.h"
#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::NSError;
using platform::UNAuthorizationStatus;

using Write = std::function<void(sdbus::MethodCall&)>;
// Null: no reply will come. Throws sdbus::Error for a reply of another shape.
using Read = std::function<void(sdbus::MethodReply*, const sdbus::Error*)>;

// Sees to it that an answer is given exactly once, by the time nobody can give it any more.
class Answering {
 public:
  explicit Answering(Read read) : read_(std::move(read)) {}
  ~Answering() { give(nullptr, nullptr); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;

  void give(sdbus::MethodReply* reply, const sdbus::Error* error) {
    const Read read = std::exchange(read_, nullptr);
    if (!read) return;
    try {
      read(reply, error);
    } catch (const sdbus::Error&) {
      read(nullptr, nullptr);
    }
  }

 private:
  Read read_;
};

void call(BusThread& bus, const char* method, Write write, Read read) {
  auto answering = std::make_shared<Answering>(std::move(read));
  bus.post([method, write = std::move(write),
            answering = std::move(answering)](StandingConnection* standing) {
    if (standing == nullptr) return;
    const BusObject& center = bus_names::notificationCenter;
    sdbus::IProxy& proxy = standing->proxy(center);
    sdbus::MethodCall message = proxy.createMethodCall(center.interface, method);
    write(message);
    proxy.callMethod(message, [answering](sdbus::MethodReply& reply, const sdbus::Error* error) {
      answering->give(error == nullptr ? &reply : nullptr, error);
    });
  });
}

std::map<std::string, sdbus::Variant> wireContent(
    const platform::UNMutableNotificationContent& content) {
  std::map<std::string, std::string> userInfo;
  for (const auto& [key, value] : content.userInfo) userInfo[busText(key)] = busText(value);
  return {{center_wire::title, busText(content.title)},
          {center_wire::body, busText(content.body)},
          {center_wire::sound, std::string(center_wire::defaultSound)},
          {center_wire::userInfo, userInfo}};
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
      [bundle = busText(bundle)](sdbus::MethodCall& message) { message << bundle; },
      [answer = std::move(answer)](sdbus::MethodReply* reply, const sdbus::Error*) {
        std::int32_t number = -1;
        if (reply != nullptr) *reply >> number;
        answer(center_wire::statusOf(number));
      });
}

void callSetAuthorizationStatus(BusThread& bus, const std::string& bundle,
                                UNAuthorizationStatus status, std::function<void(bool)> answer) {
  call(
      bus, center_wire::setAuthorizationStatus,
      [bundle = busText(bundle), number = static_cast<std::int32_t>(status)](
          sdbus::MethodCall& message) { message << bundle << number; },
      [answer = std::move(answer)](sdbus::MethodReply* reply, const sdbus::Error*) {
        answer(reply != nullptr);
      });
}

void callAdd(BusThread& bus, const std::string& bundle,
             const platform::UNNotificationRequest& request,
             std::function<void(std::optional<NSError>)> answer) {
  using Repeats = platform::UNTimeIntervalNotificationTrigger::Repeats;
  call(
      bus, center_wire::add,
      [bundle = busText(bundle), request](sdbus::MethodCall& message) {
        message << bundle << busText(request.identifier) << wireContent(request.content)
                << request.trigger.timeInterval.count()
                << (request.trigger.repeats == Repeats::yes);
      },
      [answer = std::move(answer)](sdbus::MethodReply* reply, const sdbus::Error* error) {
        if (reply != nullptr) return answer(std::nullopt);
        if (error == nullptr) return answer(centerNotAnswering());
        // The error's words could be anybody's; its name is a fixed identifier.
        answer(NSError("UNErrorDomain", 2, "The notification center refused: " + error->getName()));
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
