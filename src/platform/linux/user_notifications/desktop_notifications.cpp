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
#include "platform/linux/user_notifications/desktop_wire.h"

namespace kivo::linux_platform {
namespace {

using platform::UNMutableNotificationContent;
using Done = std::function<void(ShowOutcome)>;

constexpr const BusObject& desktop = bus_names::desktopNotifications;
constexpr std::uint64_t withoutTimeLimit = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t mostLinks = 500;

std::string serverChanges() {
  const BusObject& bus = bus_names::bus;
  return std::string("type='signal',sender='") + bus.service + "',interface='" + bus.interface +
         "',member='NameOwnerChanged',arg0='" + desktop.service + "'";
}

std::string deepLink(const UNMutableNotificationContent& content) {
  const auto found = content.userInfo.find("deepLink");
  return found == content.userInfo.end() ? "" : found->second;
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
  server_->uponSignal(desktop_wire::actionInvoked)
      .onInterface(desktop.interface)
      .call([this](std::uint32_t id, const std::string& action) {
        const auto link = links_.find(id);
        if (link == links_.end() || action != desktop_wire::defaultAction) return;
        opener_.open(link->second);
      });
  server_->uponSignal(desktop_wire::notificationClosed)
      .onInterface(desktop.interface)
      .call([this](std::uint32_t id, std::uint32_t) { links_.erase(id); });
  server_->finishRegistration();

  connection.addMatch(
      serverChanges(),
      [this, appeared = std::move(serverAppeared)](sdbus::Message& change) {
        std::string name;
        std::string before;
        std::string after;
        change >> name >> before >> after;
        links_.clear();  // another server counts its notifications anew
        if (!after.empty()) appeared();
      },
      sdbus::floating_slot);
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
        if (const auto id = valueOf<std::uint32_t>(reply)) rememberLink(*id, content);
        done(ShowOutcome::shown);
      },
      withoutTimeLimit);
}

void DesktopNotifications::rememberLink(std::uint32_t id,
                                        const UNMutableNotificationContent& content) {
  if (deepLink(content).empty()) return;
  links_[id] = deepLink(content);
  // A server that never says what it closed must not make us grow; it counts upwards.
  if (links_.size() > mostLinks) links_.erase(links_.begin());
}

}  // namespace kivo::linux_platform
