#include "notification_center/desktop_notifications.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_signal.h"
#include "platform/linux/bus/desktop_notifications_interface.h"
#include "platform/linux/foundation/markup_text.h"
#include "platform/linux/process/desktop_entry.h"

namespace kivo {

namespace desktop_notifications_interface = linux_platform::desktop_notifications_interface;
using linux_platform::BusMessage;
using linux_platform::BusObject;
using linux_platform::BusReader;
using linux_platform::BusWriter;
using linux_platform::desktopEntry;
using linux_platform::errorOf;
using linux_platform::escapedMarkup;
using linux_platform::HeardSignal;
using linux_platform::methodCall;
using linux_platform::noTimeout;
using linux_platform::sendCall;
using linux_platform::subscribe;
using linux_platform::subscribeToOwner;

namespace {

using platform::UNMutableNotificationContent;
using Done = std::function<void(ShowOutcome)>;
using Texts = std::vector<std::string>;

constexpr const BusObject& desktop = desktop_notifications_interface::object;
constexpr std::size_t mostLinks = 500;
constexpr std::size_t longestLink = 8 << 10;  // bytes; longer ones cannot be opened

std::string deepLink(const UNMutableNotificationContent& content) {
  const auto found = content.userInfo.find("deepLink");
  const bool opens = found != content.userInfo.end() && found->second.size() <= longestLink;
  return opens ? found->second : "";
}

bool beginsWithScheme(std::string_view link) {
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view others = "0123456789+.-";
  const std::string_view scheme = link.substr(0, link.find(':'));
  if (scheme.empty() || scheme.size() == link.size()) return false;
  if (letters.find(scheme.front()) == std::string_view::npos) return false;
  return scheme.find_first_not_of(std::string(letters).append(others)) == std::string_view::npos;
}

bool isWithoutServer(std::string_view error) {
  return error == DBUS_ERROR_SERVICE_UNKNOWN || error == DBUS_ERROR_NAME_HAS_NO_OWNER ||
         error.starts_with("org.freedesktop.DBus.Error.Spawn.");
}

// Returns nullopt when `reply`, which may be null, is not an error.
std::optional<ShowOutcome> failureOf(const BusMessage& reply) {
  if (!reply) return ShowOutcome::failed;
  const auto error = errorOf(reply);
  if (!error) return std::nullopt;
  return isWithoutServer(*error) ? ShowOutcome::noServer : ShowOutcome::failed;
}

BusMessage notifyCall(const UNMutableNotificationContent& content, const Texts& capabilities) {
  const auto has = [&](const char* capability) {
    return std::find(capabilities.begin(), capabilities.end(), capability) != capabilities.end();
  };
  return methodCall(desktop, desktop_notifications_interface::notify, [&](BusWriter& arguments) {
    arguments.text("Kivo");
    arguments.natural(0);
    arguments.text(desktopEntry);  // the icon's name: some desktops ignore the hint below for it
    arguments.text(content.title);
    arguments.text(has(desktop_notifications_interface::bodyMarkup) ? escapedMarkup(content.body)
                                                                    : content.body);
    arguments.texts(deepLink(content).empty()
                        ? Texts{}
                        : Texts{desktop_notifications_interface::defaultAction, "Open"});
    arguments.array("{sv}", [&](BusWriter& hints) {
      hints.textEntry("desktop-entry", desktopEntry);
      if (has(desktop_notifications_interface::sound))
        hints.textEntry("sound-name", "message-new-instant");
    });
    arguments.integer(-1);
  });
}

}  // namespace

DesktopNotifications::DesktopNotifications(DBusConnection* bus,
                                           std::function<void()> serverAppeared)
    : bus_(bus) {
  subscribeToServer(std::move(serverAppeared));
}

void DesktopNotifications::subscribeToServer(std::function<void()> serverAppeared) {
  subscribe(bus_,
            {.interface = desktop.interface,
             .member = desktop_notifications_interface::actionInvoked,
             .service = desktop.service},
            [this](HeardSignal signal) {
              const auto shown = linkOf(signal.arguments.natural(), signal.sender);
              if (shown != links_.end() &&
                  signal.arguments.text() == desktop_notifications_interface::defaultAction) {
                open(shown->second.link);
              }
            });
  subscribe(bus_,
            {.interface = desktop.interface,
             .member = desktop_notifications_interface::notificationClosed,
             .service = desktop.service},
            [this](HeardSignal signal) {
              const auto shown = linkOf(signal.arguments.natural(), signal.sender);
              if (shown != links_.end()) links_.erase(shown);
            });
  subscribeToOwner(bus_, desktop.service,
                   [this, appeared = std::move(serverAppeared)](const std::string& owner) {
                     links_.clear();  // a new server restarts its identifiers
                     if (!owner.empty()) appeared();
                   });
}

void DesktopNotifications::show(UNMutableNotificationContent content, Done done) {
  sendCall(bus_, methodCall(desktop, desktop_notifications_interface::getCapabilities), noTimeout,
           [this, content = std::move(content), done = std::move(done)](const BusMessage& reply) {
             if (const auto failure = failureOf(reply)) return done(*failure);
             notify(content, BusReader(reply).texts(), done);
           });
}

void DesktopNotifications::notify(const UNMutableNotificationContent& content,
                                  const std::vector<std::string>& capabilities, Done done) {
  sendCall(bus_, notifyCall(content, capabilities), noTimeout,
           [this, link = deepLink(content), done = std::move(done)](const BusMessage& reply) {
             if (const auto failure = failureOf(reply)) return done(*failure);
             // A server that replies without an error has shown it, whatever else the reply
             // contains.
             const auto id = BusReader(reply).natural();
             const char* const server = dbus_message_get_sender(reply.get());
             if (id && server != nullptr) rememberLink(*id, {.server = server, .link = link});
             done(ShowOutcome::shown);
           });
}

DesktopNotifications::Links::iterator DesktopNotifications::linkOf(std::optional<std::uint32_t> id,
                                                                   std::string_view server) {
  const auto found = id ? links_.find(*id) : links_.end();
  return found != links_.end() && found->second.server == server ? found : links_.end();
}

// xdg-open could take a link without a scheme for an option or a file.
void DesktopNotifications::open(const std::string& link) {
  if (beginsWithScheme(link)) openers_.startOutsideService({"xdg-open", link});
}

void DesktopNotifications::rememberLink(std::uint32_t id, Shown shown) {
  if (shown.link.empty()) return;
  links_[id] = std::move(shown);
  // Bounds the memory when a server never reports closed notifications. Identifiers increase, so
  // the oldest goes first.
  if (links_.size() > mostLinks) links_.erase(links_.begin());
}

}  // namespace kivo
