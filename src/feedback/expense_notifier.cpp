#include "feedback/expense_notifier.h"

#include <chrono>
#include <utility>

#include "feedback/deep_link.h"
#include "platform/foundation/uuid.h"
#include "platform/user_notifications/un_user_notification_center.h"

namespace kivo {

using namespace std::chrono_literals;

platform::Task<void> ExpenseNotifier::post(std::string title, std::string body) {
  return post(std::move(title), std::move(body), DeepLink::app);
}

platform::Task<void> ExpenseNotifier::post(std::string title, std::string body, std::string link) {
  auto& center = platform::UNUserNotificationCenter::currentNotificationCenter();

  const platform::UNNotificationSettings settings = co_await center.notificationSettings();
  if (settings.authorizationStatus != platform::UNAuthorizationStatus::authorized) co_return;

  platform::UNMutableNotificationContent content{
      .title = std::move(title),
      .body = std::move(body),
      .sound = platform::UNNotificationSound::defaultSound,
      .userInfo = {{"deepLink", std::move(link)}},
  };
  const platform::UNTimeIntervalNotificationTrigger trigger{
      .timeInterval = 1s, .repeats = platform::UNTimeIntervalNotificationTrigger::Repeats::no};
  platform::UNNotificationRequest request{.identifier = platform::UUID::uuidString(),
                                          .content = std::move(content),
                                          .trigger = trigger};
  co_await center.addNotificationRequest(std::move(request));
}

}  // namespace kivo
