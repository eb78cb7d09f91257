#include "platform/linux/user_notifications/notification_center_service.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_loop.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/sdbus_events.h"
#include "platform/linux/user_notifications/center_wire.h"

namespace kivo::linux_platform {
namespace {

constexpr const BusObject& center = bus_names::notificationCenter;
using WireContent = std::map<std::string, sdbus::Variant>;

sdbus::Error invalid(const std::string& words) {
  return {"org.freedesktop.DBus.Error.InvalidArgs", words};
}

template <typename Value>
Value valueOf(const sdbus::Variant& variant, const char* key) {
  if (!variant.containsValueOfType<Value>()) {
    throw invalid(std::string("content has a value of another type under ") + key);
  }
  return variant.get<Value>();
}

platform::UNMutableNotificationContent contentOf(const WireContent& wire) {
  platform::UNMutableNotificationContent content;
  for (const auto& [key, value] : wire) {
    if (key == center_wire::title) {
      content.title = valueOf<std::string>(value, center_wire::title);
    } else if (key == center_wire::body) {
      content.body = valueOf<std::string>(value, center_wire::body);
    } else if (key == center_wire::sound) {
      if (valueOf<std::string>(value, center_wire::sound) != center_wire::defaultSound) {
        throw invalid("there is no sound but the default one");
      }
    } else if (key == center_wire::userInfo) {
      content.userInfo = valueOf<std::map<std::string, std::string>>(value, center_wire::userInfo);
    } else {
      throw invalid("content has an unknown key");
    }
  }
  return content;
}

platform::UNTimeIntervalNotificationTrigger triggerOf(double interval, bool repeats) {
  const std::chrono::duration<double> timeInterval(interval);
  if (!platform::UNTimeIntervalNotificationTrigger::isPossible(timeInterval)) {
    throw invalid("the interval is no time from now to a century");
  }
  if (repeats) throw invalid("no notification repeats");
  return {.timeInterval = timeInterval};
}

void add(NotificationCenterCalls& calls, const std::string& bundle, const std::string& identifier,
         const WireContent& content, double interval, bool repeats) {
  const AddOutcome outcome = calls.add(bundle, {.identifier = identifier,
                                                .content = contentOf(content),
                                                .trigger = triggerOf(interval, repeats)});
  switch (outcome) {
    case AddOutcome::kept:
      return;
    case AddOutcome::denied:
      throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied",
                         "the person has denied notifications of this bundle");
    case AddOutcome::notKept:
      throw sdbus::Error("org.freedesktop.DBus.Error.IOError", "the request cannot be kept");
  }
}

void setStatus(NotificationCenterCalls& calls, const std::string& bundle, std::int32_t number) {
  const auto status = center_wire::statusOf(number);
  if (!status) throw invalid("there is no such authorization status");
  if (!calls.setAuthorizationStatus(bundle, *status)) {
    throw sdbus::Error("org.freedesktop.DBus.Error.IOError", "the status cannot be kept");
  }
}

std::unique_ptr<sdbus::IObject> makeObject(sdbus::IConnection& connection,
                                           NotificationCenterCalls* calls) {
  auto object = sdbus::createObject(connection, center.path);
  object->registerMethod(center_wire::authorizationStatus)
      .onInterface(center.interface)
      .withInputParamNames("bundle")
      .withOutputParamNames("status")
      .implementedAs([calls](const std::string& bundle) {
        return static_cast<std::int32_t>(calls->authorizationStatus(bundle));
      });
  object->registerMethod(center_wire::setAuthorizationStatus)
      .onInterface(center.interface)
      .withInputParamNames("bundle", "status")
      .implementedAs([calls](const std::string& bundle, std::int32_t status) {
        setStatus(*calls, bundle, status);
      });
  object->registerMethod(center_wire::add)
      .onInterface(center.interface)
      .withInputParamNames("bundle", "identifier", "content", "interval", "repeats")
      .implementedAs([calls](const std::string& bundle, const std::string& identifier,
                             const WireContent& content, double interval, bool repeats) {
        add(*calls, bundle, identifier, content, interval, repeats);
      });
  object->registerMethod(center_wire::pending)
      .onInterface(center.interface)
      .withInputParamNames("bundle")
      .withOutputParamNames("identifiers")
      .implementedAs([calls](const std::string& bundle) { return calls->pending(bundle); });
  object->finishRegistration();
  return object;
}

std::unique_ptr<sdbus::IConnection> connectionWithName() {
  std::unique_ptr<sdbus::IConnection> connection;
  try {
    connection = sdbus::createSessionBusConnection();
  } catch (const sdbus::Error&) {
    throw std::runtime_error("there is no session bus");
  }
  try {
    connection->requestName(center.service);
  } catch (const sdbus::Error&) {
    throw std::runtime_error(std::string("another program is ") + center.service);
  }
  return connection;
}

}  // namespace

struct NotificationCenterService::Bus {
  std::unique_ptr<sdbus::IConnection> connection = connectionWithName();
  BusLoop loop{eventsOf(*connection)};
  std::unique_ptr<DesktopNotifications> desktop;
};

NotificationCenterService::NotificationCenterService() : bus_(std::make_unique<Bus>()) {}

NotificationCenterService::~NotificationCenterService() = default;

void NotificationCenterService::show(const platform::UNMutableNotificationContent& content,
                                     std::function<void(ShowOutcome)> done) {
  bus_->desktop->show(content, std::move(done));
}

void NotificationCenterService::serve(
    NotificationCenterCalls& calls,
    const std::function<std::optional<std::chrono::milliseconds>()>& beforeWaiting) {
  try {
    sdbus::IConnection& connection = *bus_->connection;
    bus_->desktop =
        std::make_unique<DesktopNotifications>(connection, [&calls] { calls.serverAppeared(); });
    const std::unique_ptr<sdbus::IObject> object = makeObject(connection, &calls);
    bus_->loop.run(beforeWaiting);
  } catch (const sdbus::Error&) {
    // The bus went away before we were ready to serve.
  }
  bus_->desktop.reset();
}

void NotificationCenterService::stop() noexcept { bus_->loop.stop(); }

}  // namespace kivo::linux_platform
