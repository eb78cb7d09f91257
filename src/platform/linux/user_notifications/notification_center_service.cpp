#include "platform/linux/user_notifications/notification_center_service.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_loop.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/sdbus_events.h"
#include "platform/linux/user_notifications/center_wire.h"
#include "platform/linux/user_notifications/request_reader.h"

namespace kivo::linux_platform {
namespace {

constexpr const BusObject& center = bus_names::notificationCenter;

void add(NotificationCenterCalls& calls, sdbus::MethodCall call) {
  ReceivedRequest received = readRequest(call);
  switch (calls.add(received.bundle, std::move(received.request))) {
    case AddOutcome::kept:
      call.createReply().send();
      return;
    case AddOutcome::denied:
      throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied",
                         "the person has denied notifications of this bundle");
    case AddOutcome::noRoom:
      throw sdbus::Error("org.freedesktop.DBus.Error.LimitsExceeded",
                         "the requests that wait are too large for one more");
    case AddOutcome::notKept:
      throw sdbus::Error("org.freedesktop.DBus.Error.IOError", "the request cannot be kept");
  }
}

void setStatus(NotificationCenterCalls& calls, const std::string& bundle, std::int32_t number) {
  const auto status = center_wire::statusOf(number);
  if (!status) throw invalid("there is no such authorization status");
  if (sizeOf(bundle) > largestRequest) throw tooLarge();
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
  object->registerMethod(center.interface, center_wire::add, "ssa{sv}db",
                         {"bundle", "identifier", "content", "interval", "repeats"}, "", {},
                         [calls](sdbus::MethodCall call) { add(*calls, std::move(call)); });
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
