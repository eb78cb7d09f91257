#include "platform/linux/user_notifications/desktop_notifications.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/desktop_entry.h"
#include "platform/linux/process/markup_text.h"
#include "platform/linux/process/sdbus_signals.h"
#include "platform/linux/user_notifications/desktop_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::UNMutableNotificationContent;
using Done = std::function<void(ShowOutcome)>;

constexpr const BusObject& desktop = bus_names::desktopNotifications;
constexpr std::uint64_t withoutTimeLimit = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t mostLinks = 500;
constexpr std::size_t longestLink = 8 << 10;  // bytes; a longer one is not offered to be opened

std::string deepLink(const UNMutableNotificationContent& content) {
  const auto found = content.userInfo.find("deepLink");
  const bool opens = found != content.userInfo.end() && found->second.size() <= longestLink;
  return opens ? found->second : "";
}

ShowOutcome outcomeOf(const sdbus::Error& error) {
  const std::string_view name = error.getName();
  const bool nobodyThere = name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
                           name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
                           name.starts_with("org.freedesktop.DBus.Error.Spawn.");
  return nobodyThere ? ShowOutcome::noServer : ShowOutcome::failed;
}

// What a reply holds; a reply of another shape is as good as an error.
template <typename Value>
std::optional<Value> valueOf(sdbus::MethodReply& reply) {
  try {
    Value value{};
    reply >> value;
    return value;
  } catch (const sdbus::Error&) {
    return std::nullopt;
  }
}

}  // namespace

DesktopNotifications::DesktopNotifications(sdbus::IConnection& connection,
                                           std::function<void()> serverAppeared)
    : server_(sdbus::createProxy(connection, desktop.service, desktop.path)) {
  onSignal(connection, {desktop.service, desktop.interface, desktop_wire::actionInvoked},
           [this](sdbus::Message& signal) {
             std::uint32_t id = 0;
             std::string action;
             signal >> id >> action;
             const auto shown = linkOf(id, signal.getSender());
             if (shown != links_.end() && action == desktop_wire::defaultAction) {
               opener_.open(shown->second.link);
             }
           });
  onSignal(connection, {desktop.service, desktop.interface, desktop_wire::notificationClosed},
           [this](sdbus::Message& signal) {
             std::uint32_t id = 0;
             signal >> id;
             const auto shown = linkOf(id, signal.getSender());
             if (shown != links_.end()) links_.erase(shown);
           });
  onOwnerChange(connection, desktop.service,
                [this, appeared = std::move(serverAppeared)](const std::string& owner) {
                  links_.clear();  // another server counts its notifications anew
                  if (!owner.empty()) appeared();
                });
}

DesktopNotifications::~DesktopNotifications() = default;

void DesktopNotifications::show(UNMutableNotificationContent content, Done done) {
  const auto call = server_->createMethodCall(desktop.interface, desktop_wire::getCapabilities);
  server_->callMethod(
      call,
      [this, content = std::move(content), done = std::move(done)](sdbus::MethodReply& reply,
                                                                   const sdbus::Error* error) {
        if (error != nullptr) return done(outcomeOf(*error));
        const auto capabilities = valueOf<std::vector<std::string>>(reply);
        notify(content, capabilities.value_or(std::vector<std::string>()), done);
      },
      withoutTimeLimit);
}

void DesktopNotifications::notify(const UNMutableNotificationContent& content,
                                  const std::vector<std::string>& capabilities, Done done) {
  const auto has = [&](const char* capability) {
    return std::find(capabilities.begin(), capabilities.end(), capability) != capabilities.end();
  };
  std::map<std::string, sdbus::Variant> hints{{"desktop-entry", std::string(desktopEntry)}};
  if (has(desktop_wire::sound)) hints["sound-name"] = std::string("message-new-instant");
  std::vector<std::string> actions;
  if (!deepLink(content).empty()) actions = {desktop_wire::defaultAction, "Open"};

  auto call = server_->createMethodCall(desktop.interface, desktop_wire::notify);
  call << "Kivo" << std::uint32_t{0} << "" << content.title
       << (has(desktop_wire::bodyMarkup) ? escapedMarkup(content.body) : content.body) << actions
       << hints << std::int32_t{-1};
  server_->callMethod(
      call,
      [this, content, done = std::move(done)](sdbus::MethodReply& reply,
                                              const sdbus::Error* error) {
        if (error != nullptr) return done(outcomeOf(*error));
        // A server that answers without an error has shown it, whatever else it answers.
        if (const auto id = valueOf<std::uint32_t>(reply)) {
          rememberLink(*id, reply.getSender(), content);
        }
        done(ShowOutcome::shown);
      },
      withoutTimeLimit);
}

DesktopNotifications::Links::iterator DesktopNotifications::linkOf(std::uint32_t id,
                                                                   const std::string& server) {
  const auto found = links_.find(id);
  return found != links_.end() && found->second.server == server ? found : links_.end();
}

void DesktopNotifications::rememberLink(std::uint32_t id, const std::string& server,
                                        const UNMutableNotificationContent& content) {
  if (deepLink(content).empty()) return;
  links_[id] = {.server = server, .link = deepLink(content)};
  // A server that never says what it closed must not make us grow; it counts upwards.
  if (links_.size() > mostLinks) links_.erase(links_.begin());
}

}  // namespace kivo::linux_platform
