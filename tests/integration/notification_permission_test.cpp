// The user's notification permission, sent to the notification center.
#include <chrono>

#include <gtest/gtest.h>

#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "testkit/private_phone.h"
#include "testkit/silent_socket.h"

namespace kivo {
namespace {

using linux_platform::setAuthorizationStatus;
using platform::UNAuthorizationStatus;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(ANotificationPermission, IsStoredPerBundle) {
  testkit::PrivatePhone phone;
  EXPECT_TRUE(setAuthorizationStatus("app.one", UNAuthorizationStatus::ephemeral));
  EXPECT_EQ(phone.callCenter("AuthorizationStatus", {"app.one"}).output, "(4,)\n");
  EXPECT_EQ(phone.callCenter("AuthorizationStatus", {"app.two"}).output, "(0,)\n");
}

TEST(ANotificationPermission, FailsAtOnceWithoutABus) {
  const testkit::PrivateFolders folders;
  const Clock::time_point start = Clock::now();
  EXPECT_FALSE(setAuthorizationStatus("app.one", UNAuthorizationStatus::denied));
  EXPECT_LE(Clock::now() - start, 300ms);
}

TEST(ANotificationPermission, TimesOutAfterFiveSecondsOnASilentBus) {
  const testkit::PrivateFolders folders;
  const testkit::SilentSocket silent(folders.home() / "silent");
  const testkit::ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", silent.busAddress());
  const Clock::time_point start = Clock::now();
  EXPECT_FALSE(setAuthorizationStatus("app.one", UNAuthorizationStatus::denied));
  EXPECT_GE(Clock::now() - start, 4900ms);
  EXPECT_LE(Clock::now() - start, 5500ms);
}

}  // namespace
}  // namespace kivo
