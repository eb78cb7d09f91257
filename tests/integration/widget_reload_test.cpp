// The reload signal from the extension to the programs that draw widgets.
#include <future>

#include <gtest/gtest.h>

#include "phone/widget_reload_listener.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/widget_kit/bus_widget_center.h"
#include "testkit/private_phone.h"
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

TEST_F(AReload, IsReceivedWhenItsSenderExitsAtOnce) {
  WidgetReloadListener listener;
  {
    SessionBus bus;  // which still connects
    BusWidgetCenter(bus).reloadAllTimelines();
  }
  EXPECT_TRUE(listener.waitForReload(10s));
  EXPECT_FALSE(listener.waitForReload(50ms));
}

TEST_F(AReload, IsReceivedBeforeItsSenderExits) {
  WidgetReloadListener listener;
  SessionBus bus;
  BusWidgetCenter center(bus);
  for (int round = 0; round < 3; ++round) {
    center.reloadAllTimelines();
    EXPECT_TRUE(listener.waitForReload(10s));
  }
}

TEST_F(AReload, CanBeSentByOtherPrograms) {
  WidgetReloadListener listener;
  const auto sent = linux_platform::runProgram(
      {.program = "gdbus",
       .arguments = {"emit", "--session", "--object-path", "/app/kivo/WidgetCenter", "--signal",
                     "app.kivo.WidgetCenter1.ReloadAllTimelines"}});
  ASSERT_EQ(sent.status, 0) << sent.errors;
  EXPECT_TRUE(listener.waitForReload(10s));
}

TEST_F(AReload, ReachesEveryListener) {
  WidgetReloadListener one;
  WidgetReloadListener two;
  SessionBus bus;
  BusWidgetCenter(bus).reloadAllTimelines();
  EXPECT_TRUE(one.waitForReload(10s));
  EXPECT_TRUE(two.waitForReload(10s));
}

TEST_F(AReload, StopsBeingAwaitedWhenTheListenerIsStopped) {
  WidgetReloadListener listener;
  auto waiting = std::async(std::launch::async, [&] { return listener.waitForReload(60s); });
  listener.stop();
  ASSERT_EQ(waiting.wait_for(10s), std::future_status::ready);
  EXPECT_FALSE(waiting.get());
  EXPECT_FALSE(listener.waitForReload(60s));
  EXPECT_FALSE(listener.lost());
}

TEST_F(AReload, StopsBeingAwaitedWhenTheBusEnds) {
  WidgetReloadListener listener;
  EXPECT_FALSE(listener.lost());
  phone.endBus();
  EXPECT_FALSE(listener.waitForReload(60s));
  EXPECT_TRUE(listener.lost());
}

TEST(WithoutASessionBus, AReloadIsSkippedAndAListenerFails) {
  const testkit::PrivateFolders folders;
  EXPECT_THROW(WidgetReloadListener(), std::runtime_error);
  SessionBus bus;
  BusWidgetCenter(bus).reloadAllTimelines();
  const auto start = Clock::now();
  bus.finish();
  EXPECT_LE(Clock::now() - start, 300ms);
}

TEST(OnASilentBus, AReloadTimesOutAfterASecond) {
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
