#include "platform/linux/user_notifications/notification_permission.h"

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>

#include "platform/linux/process/session_bus.h"
#include "platform/linux/user_notifications/center_calls.h"

namespace kivo::linux_platform {
namespace {

constexpr std::chrono::seconds timeout(5);

// What `call`, which is handed the bus and where to put its answer, is answered within the time;
// else `otherwise`.
template <typename Answer>
Answer answerTo(const std::function<void(BusThread&, std::function<void(Answer)>)>& call,
                Answer otherwise) {
  SessionBus bus(std::chrono::seconds(0));  // all waiting is done here, none at its end
  const auto answered = std::make_shared<std::promise<Answer>>();
  std::future<Answer> answer = answered->get_future();
  call(bus.thread(), [answered](Answer given) { answered->set_value(given); });
  return answer.wait_for(timeout) == std::future_status::ready ? answer.get() : otherwise;
}

}  // namespace

std::optional<platform::UNAuthorizationStatus> authorizationStatus(std::string_view bundle) {
  using Status = std::optional<platform::UNAuthorizationStatus>;
  return answerTo<Status>(
      [bundle](BusThread& bus, std::function<void(Status)> answer) {
        callAuthorizationStatus(bus, std::string(bundle), std::move(answer));
      },
      std::nullopt);
}

bool setAuthorizationStatus(std::string_view bundle, platform::UNAuthorizationStatus status) {
  return answerTo<bool>(
      [bundle, status](BusThread& bus, std::function<void(bool)> answer) {
        callSetAuthorizationStatus(bus, std::string(bundle), status, std::move(answer));
      },
      false);
}

}  // namespace kivo::linux_platform
