// The reload signal from the extension to whoever draws the widgets.

#include <gtest/gtest.h>

#include "platform/linux/bus/session_bus.h"
#include "platform/linux/widget_kit/bus_widget_center.h"
#include "testkit/private_phone.h"
#include "testkit/reload_listener.h"
#include "testkit/silent_socket.h"

namespace kivo {
namespace {

using linux_platform::BusWidgetCenter;
using linux_platform::SessionBus;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class AReload : public testing::Test {
 protected:
  testkit::PrivatePhone phone;
};

TEST_F(AReload, IsHeardThoughItsSenderEndsAtOnce) {
  testkit::ReloadListener listener;
  {
    SessionBus bus;  // which still connects
    BusWidgetCenter(bus).reloadAllTimelines();
  }
  EXPECT_TRUE(listener.waitForReload(10s));
  EXPECT_FALSE(listener.waitForReload(50ms));
}

TEST_F(AReload, IsHeardBeforeItsSenderEnds) {
  testkit::ReloadListener listener;
  SessionBus bus;
  BusWidgetCenter center(bus);
  for (int round = 0; round < 3; ++round) {
    center.reloadAllTimelines();
    EXPECT_TRUE(listener.waitForReload(10s));
  }
}

TEST_F(AReload, IsTheSignalThatOthersMaySend) {
  testkit::ReloadListener listener;
  const auto sent = linux_platform::runProgram(
      {.program = "gdbus",
       .arguments = {"emit", "--session", "--object-path", "/app/kivo/WidgetCenter", "--signal",
                     "app.kivo.WidgetCenter1.ReloadAllTimelines"}});
  ASSERT_EQ(sent.status, 0) << sent.errors;
  EXPECT_TRUE(listener.waitForReload(10s));
}

TEST_F(AReload, ReachesEveryListener) {
  testkit::ReloadListener one;
  testkit::ReloadListener two;
  SessionBus bus;
  BusWidgetCenter(bus).reloadAllTimelines();
  EXPECT_TRUE(one.waitForReload(10s));
  EXPECT_TRUE(two.waitForReload(10s));
}

TEST(WithoutASessionBus, AReloadIsDroppedAtOnce) {
  const testkit::PrivateFolders folders;
  SessionBus bus;
  BusWidgetCenter(bus).reloadAllTimelines();
  const auto start = Clock::now();
  bus.finish();
  EXPECT_LE(Clock::now() - start, 300ms);
}

TEST(OnASilentBus, AReloadIsGivenUpAfterASecond) {
  const testkit::PrivateFolders folders;
  const testkit::SilentSocket silent(folders.home() / "silent");
  const testkit::ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", silent.busAddress());
  const auto start = Clock::now();
  {
    SessionBus bus;
    BusWidgetCenter(bus).reloadAllTimelines();
    EXPECT_LE(Clock::now() - start, 200ms);
  }
  EXPECT_GE(Clock::now() - start, 900ms);
  EXPECT_LE(Clock::now() - start, 1300ms);
}

}  // namespace
}  // namespace kivo
