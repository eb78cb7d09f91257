#include "platform/linux/user_notifications/request_reader.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::UNMutableNotificationContent;
using platform::UNTimeIntervalNotificationTrigger;

class RequestReader {
 public:
  explicit RequestReader(sdbus::MethodCall& call) : call_(call) {}

  std::string text() {
    std::string text;
    call_ >> text;
    left_ -= std::min(left_, sizeOf(text));
    if (left_ == 0) throw tooLarge();
    return text;
  }

  // As `signature`, the type of its entries, says; `readEntry` is called within each of them.
  template <typename ReadEntry>
  void dictionary(const std::string& signature, ReadEntry readEntry) {
    if (!call_.enterContainer("{" + signature + "}")) return;
    while (call_.enterDictEntry(signature)) {
      readEntry();
      call_.exitDictEntry();
    }
    call_.clearFlags();
    call_.exitContainer();
  }

  // Calls `read` within the next value, which must be of the type `signature`.
  template <typename Read>
  void variant(const std::string& key, const std::string& signature, Read read) {
    std::string type;
    std::string contained;
    call_.peekType(type, contained);
    if (contained != signature) {
      throw invalid("content has a value of another type under " + key);
    }
    call_.enterVariant(signature);
    read();
    call_.exitVariant();
  }

 private:
  sdbus::MethodCall& call_;
  std::size_t left_ = largestRequest + 1;
};

std::string textVariant(RequestReader& reader, const char* key) {
  std::string text;
  reader.variant(key, "s", [&] { text = reader.text(); });
  return text;
}

void readEntry(RequestReader& reader, UNMutableNotificationContent& content) {
  const std::string key = reader.text();
  if (key == center_wire::title) {
    content.title = textVariant(reader, center_wire::title);
  } else if (key == center_wire::body) {
    content.body = textVariant(reader, center_wire::body);
  } else if (key == center_wire::sound) {
    if (textVariant(reader, center_wire::sound) != center_wire::defaultSound) {
      throw invalid("there is no sound but the default one");
    }
  } else if (key == center_wire::userInfo) {
    reader.variant(key, "a{ss}", [&] {
      reader.dictionary("ss", [&] {
        std::string name = reader.text();
        content.userInfo.insert_or_assign(std::move(name), reader.text());
      });
    });
  } else {
    throw invalid("content has an unknown key");
  }
}

UNTimeIntervalNotificationTrigger triggerOf(double interval, bool repeats) {
  const std::chrono::duration<double> timeInterval(interval);
  if (!UNTimeIntervalNotificationTrigger::isPossible(timeInterval)) {
    throw invalid("the interval is no time from now to a century");
  }
  if (repeats) throw invalid("no notification repeats");
  return {.timeInterval = timeInterval};
}

}  // namespace

sdbus::Error invalid(const std::string& words) {
  return {"org.freedesktop.DBus.Error.InvalidArgs", words};
}

sdbus::Error tooLarge() {
  return sdbus::Error("org.freedesktop.DBus.Error.LimitsExceeded",
                      "the request is larger than 2 MiB");
}

std::size_t sizeOf(const std::string& text) {
  constexpr std::size_t escape = 6;
  const auto escaped = std::count_if(text.begin(), text.end(), [](unsigned char character) {
    return character < ' ' || character == '"' || character == '\\';
  });
  return text.size() + sizeof(std::string) + escape * static_cast<std::size_t>(escaped);
}

std::size_t sizeOf(const std::string& bundle, const platform::UNNotificationRequest& request) {
  const UNMutableNotificationContent& content = request.content;
  std::size_t size =
      sizeOf(bundle) + sizeOf(request.identifier) + sizeOf(content.title) + sizeOf(content.body);
  for (const auto& [key, value] : content.userInfo) size += sizeOf(key) + sizeOf(value);
  return size;
}

ReceivedRequest readRequest(sdbus::MethodCall& call) {
  RequestReader reader(call);
  ReceivedRequest received;
  received.bundle = reader.text();
  received.request.identifier = reader.text();
  reader.dictionary("sv", [&] { readEntry(reader, received.request.content); });
  double interval = 0;
  bool repeats = false;
  call >> interval >> repeats;
  received.request.trigger = triggerOf(interval, repeats);
  return received;
}

}  // namespace kivo::linux_platform
