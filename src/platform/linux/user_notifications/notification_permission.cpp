#include "platform/linux/user_notifications/notification_permission.h"

#include <future>
#include <memory>
#include <string>

#include "platform/linux/process/session_bus.h"
#include "platform/linux/user_notifications/center_calls.h"

namespace kivo::linux_platform {

bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status) {
  constexpr std::chrono::seconds patience(5);
  SessionBus bus(std::chrono::seconds(0));  // all waiting is done here, none at its end
  const auto answered = std::make_shared<std::promise<bool>>();
  std::future<bool> answer = answered->get_future();
  callSetAuthorizationStatus(bus.thread(), std::string(bundle), status,
                             [answered](bool stored) { answered->set_value(stored); });
  return answer.wait_for(patience) == std::future_status::ready && answer.get();
}

}  // namespace kivo::linux_platform
