#include "platform/linux/user_notifications/bus_user_notification_center.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include "platform/linux/process/session_bus.h"
#include "platform/linux/user_notifications/center_calls.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

using platform::NSError;
using platform::UNAuthorizationStatus;

namespace {

// Where an answer from the bus's thread and the task that waits for it meet. An answer may come
// long after the task, and with it its executor, has gone: `wake` is empty then.
template <typename Answer>
struct Meeting {
  std::mutex mutex;
  std::optional<Answer> answer;
  std::function<void()> wake;

  void give(Answer given) {
    const std::lock_guard lock(mutex);
    answer = std::move(given);
    if (wake) wake();
  }

  bool answered() {
    const std::lock_guard lock(mutex);
    return answer.has_value();
  }

  void expectWith(std::function<void()> newWake) {
    const std::lock_guard lock(mutex);
    wake = std::move(newWake);
  }

  std::optional<Answer> leave() {
    const std::lock_guard lock(mutex);
    wake = nullptr;
    return std::move(answer);
  }
};

template <typename Answer>
using Ask = std::function<void(std::function<void(Answer)>)>;

// Null where no descriptor is left for it.
std::shared_ptr<asio::steady_timer> makeTimer(const asio::any_io_executor& executor,
                                              std::chrono::steady_clock::time_point end) {
  try {
    return std::make_shared<asio::steady_timer>(executor, end);
  } catch (const boost::system::system_error&) {
    return nullptr;
  }
}

// Asks, and suspends until the answer is there or the timeout is over; none then, for the rest of
// the run, and where it cannot wait. A cancellation of the task ends one wait of the timer, not the
// waiting.
template <typename Answer>
platform::Task<std::optional<Answer>> answerInTime(SessionBus* bus, Ask<Answer> ask) {
  const asio::any_io_executor executor = co_await asio::this_coro::executor;
  if (bus->isMissing(executor)) co_return std::nullopt;
  const auto end = std::chrono::steady_clock::now() + bus->timeout();
  const std::shared_ptr<asio::steady_timer> timer = makeTimer(executor, end);
  if (!timer) co_return std::nullopt;
  const auto meeting = std::make_shared<Meeting<Answer>>();
  // The task's own strand wakes it, so never before it waits.
  meeting->expectWith([executor, timer] { asio::post(executor, [timer] { timer->cancel(); }); });
  ask([meeting](Answer answer) { meeting->give(std::move(answer)); });

  while (!meeting->answered() && std::chrono::steady_clock::now() < end) {
    boost::system::error_code ignored;
    co_await timer->async_wait(asio::redirect_error(asio::use_awaitable, ignored));
  }
  std::optional<Answer> answer = meeting->leave();
  if (!answer) bus->setMissing(executor);
  co_return answer;
}

}  // namespace

BusUserNotificationCenter::BusUserNotificationCenter(SessionBus& bus, std::string bundleIdentifier)
    : bus_(bus), bundleIdentifier_(std::move(bundleIdentifier)) {}

platform::Task<platform::UNNotificationSettings> BusUserNotificationCenter::notificationSettings() {
  using Status = std::optional<UNAuthorizationStatus>;
  Ask<Status> ask = [this](std::function<void(Status)> answer) {
    callAuthorizationStatus(bus_.thread(), bundleIdentifier_, std::move(answer));
  };
  const std::optional<Status> answer = co_await answerInTime(&bus_, std::move(ask));
  const Status status = answer.value_or(std::nullopt);
  co_return platform::UNNotificationSettings{
      .authorizationStatus = status.value_or(UNAuthorizationStatus::notDetermined)};
}

platform::Task<std::optional<NSError>> BusUserNotificationCenter::addNotificationRequest(
    platform::UNNotificationRequest request) {
  using Failure = std::optional<NSError>;
  Ask<Failure> ask = [this, &request](std::function<void(Failure)> answer) {
    callAdd(bus_.thread(), bundleIdentifier_, request, std::move(answer));
  };
  const std::optional<Failure> answer = co_await answerInTime(&bus_, std::move(ask));
  co_return answer.value_or(centerNotAnswering());
}

}  // namespace kivo::linux_platform
