#include "platform/linux/user_notifications/notification_permission.h"

#include <chrono>
#include <string>

#include "platform/linux/bus/session_bus.h"
#include "platform/linux/user_notifications/center_calls.h"

namespace kivo::linux_platform {
namespace {

// The bus may have to start the center first.
constexpr std::chrono::seconds timeout(5);

}  // namespace

std::optional<platform::UNAuthorizationStatus> authorizationStatus(std::string_view bundle) {
  return statusIn(SessionBus(timeout).callAndWait(authorizationStatusCall(std::string(bundle))));
}

bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status) {
  const BusMessage call = setAuthorizationStatusCall(std::string(bundle), status);
  return isStored(SessionBus(timeout).callAndWait(call));
}

}  // namespace kivo::linux_platform
